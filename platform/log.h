// The library's only way to write a log line.
#ifndef XVKFC_PLATFORM_LOG_H_
#define XVKFC_PLATFORM_LOG_H_

namespace detail {

// Tag of every line the library writes.
inline constexpr const char* kLogTag = "FC_Native";

// Writes one printf-style line to the Android log at debug priority (3) under
// kLogTag. On Linux the line goes through liblog too, so a process can route
// it with __android_log_set_logger.
// The line is also kept as this thread's last logged line.
void logDebug(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The last line logDebug wrote on the calling thread ("" before the first
// or after forgetLastLoggedLine); valid until this thread logs again.
const char* lastLoggedLine();
void forgetLastLoggedLine();

}  // namespace detail

#endif  // XVKFC_PLATFORM_LOG_H_
