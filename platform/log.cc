#include "platform/log.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>

namespace detail {
namespace {

// liblog formats a printf-style line into 1024 bytes as well, so recording
// the line here cuts nothing the log would have kept.
constexpr int kLineBytes = 1024;

// The last line this thread logged; trivially destructible, so a thread that
// ends leaves nothing to run.
thread_local char lastLine[kLineBytes];

}  // namespace

void logDebug(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(lastLine, sizeof lastLine, format, args);
  va_end(args);
  __android_log_write(ANDROID_LOG_DEBUG, kLogTag, lastLine);
}

const char* lastLoggedLine() { return lastLine; }

void forgetLastLoggedLine() { lastLine[0] = '\0'; }

}  // namespace detail
