#include "platform/log.h"

#include <android/log.h>

#include <cstdarg>

namespace detail {

void logDebug(const char* format, ...) {
  va_list args;
  va_start(args, format);
  __android_log_vprint(ANDROID_LOG_DEBUG, kLogTag, format, args);
  va_end(args);
}

}  // namespace detail
