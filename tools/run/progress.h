// Where long work is: one line per phase on standard error.
#ifndef XVKFC_TOOLS_RUN_PROGRESS_H_
#define XVKFC_TOOLS_RUN_PROGRESS_H_

#include <chrono>
#include <string>

namespace tool {

// Reports phases ("loading", "clustering", ...) with their elapsed time on
// standard error, unless quiet. On a terminal a phase shows "xvkfc: <what>
// ..." while it runs and its time is added to the same line when it ends;
// elsewhere (a pipe, a log file, or with the library's log lines
// interleaved) only the finished line "xvkfc: <what>: <seconds> s" appears.
// Starts no threads.
class Progress {
 public:
  Progress(bool quiet, bool verbose);
  // Ends a line left open by a phase that an error cut short.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Starts a phase; `what` describes it ("batch 2/4: loading 75 faces").
  void begin(const std::string& what);
  // Ends the current phase, with `detail` appended to its line when given;
  // returns the seconds it took.
  double end(const std::string& detail = "");
  // Prints one line as it is, unless quiet.
  void note(const std::string& line) const;

 private:
  bool quiet_;
  bool sameLine_;
  bool open_ = false;
  std::string what_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_PROGRESS_H_
