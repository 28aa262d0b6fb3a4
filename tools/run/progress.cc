#include "tools/run/progress.h"

#include <unistd.h>

#include <cstdio>

namespace tool {

Progress::Progress(bool quiet, bool verbose)
    : quiet_(quiet), sameLine_(!quiet && !verbose && isatty(STDERR_FILENO)) {}

Progress::~Progress() {
  if (open_) std::fprintf(stderr, "\n");
}

void Progress::begin(const std::string& what) {
  what_ = what;
  start_ = std::chrono::steady_clock::now();
  if (sameLine_) {
    std::fprintf(stderr, "xvkfc: %s ...", what_.c_str());
    std::fflush(stderr);
    open_ = true;
  }
}

double Progress::end(const std::string& detail) {
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  const char* separator = detail.empty() ? "" : ", ";
  if (sameLine_) {
    std::fprintf(stderr, " %.3f s%s%s\n", seconds, separator, detail.c_str());
  } else if (!quiet_) {
    std::fprintf(stderr, "xvkfc: %s: %.3f s%s%s\n", what_.c_str(), seconds, separator,
                 detail.c_str());
  }
  std::fflush(stderr);
  open_ = false;
  return seconds;
}

void Progress::note(const std::string& line) const {
  if (quiet_) return;
  std::fprintf(stderr, "xvkfc: %s\n", line.c_str());
  std::fflush(stderr);
}

}  // namespace tool
