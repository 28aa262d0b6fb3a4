// Where long work is: one line per finished phase on standard error.
#ifndef XVKFC_TOOLS_PROGRESS_H_
#define XVKFC_TOOLS_PROGRESS_H_

#include <chrono>
#include <string>

namespace tool {

// Reports phases ("loading", "clustering", ...) with their elapsed time on
// standard error, unless quiet. Starts no threads.
class Progress {
 public:
  explicit Progress(bool quiet) : quiet_(quiet) {}

  // Starts a phase; `what` describes it ("batch 2/4: loading 75 faces").
  void begin(const std::string& what);
  // Ends the current phase, printing "xvkfc: <what> (<seconds> s)" with
  // `detail` appended when given; returns the seconds it took.
  double end(const std::string& detail = "");
  // Prints one line as it is, unless quiet.
  void note(const std::string& line) const;

  bool quiet() const { return quiet_; }

 private:
  bool quiet_;
  std::string what_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace tool

#endif  // XVKFC_TOOLS_PROGRESS_H_
