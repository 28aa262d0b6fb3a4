#include "tools/progress.h"

#include <cstdio>

namespace tool {

void Progress::begin(const std::string& what) {
  what_ = what;
  start_ = std::chrono::steady_clock::now();
  if (!quiet_) {
    std::fprintf(stderr, "xvkfc: %s ...\n", what_.c_str());
    std::fflush(stderr);
  }
}

double Progress::end(const std::string& detail) {
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  if (!quiet_) {
    std::fprintf(stderr, "xvkfc: %s: done in %.3f s%s%s\n", what_.c_str(), seconds,
                 detail.empty() ? "" : ", ", detail.c_str());
    std::fflush(stderr);
  }
  return seconds;
}

void Progress::note(const std::string& line) const {
  if (quiet_) return;
  std::fprintf(stderr, "xvkfc: %s\n", line.c_str());
  std::fflush(stderr);
}

}  // namespace tool
