// Captures the library's log lines through liblog's logger hook.
#ifndef XVKFC_TESTS_SUPPORT_LOG_CAPTURE_H_
#define XVKFC_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <string>
#include <vector>

namespace testing_support {

struct LogLine {
  int priority;
  std::string tag;
  std::string message;
};

// While one lives, every line written through liblog is kept in `lines`
// (debug lines included) instead of going to standard error.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LogLine> lines;

  // The messages alone, in order.
  std::vector<std::string> messages() const;
};

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_LOG_CAPTURE_H_
