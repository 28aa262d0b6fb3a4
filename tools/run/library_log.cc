#include "tools/run/library_log.h"

#include <android/log.h>

#include <cstdio>
#include <cstring>

namespace tool {
namespace {

char priorityLetter(int priority) {
  switch (priority) {
    case ANDROID_LOG_VERBOSE:
      return 'V';
    case ANDROID_LOG_DEBUG:
      return 'D';
    case ANDROID_LOG_INFO:
      return 'I';
    case ANDROID_LOG_WARN:
      return 'W';
    case ANDROID_LOG_ERROR:
      return 'E';
    default:
      return 'F';
  }
}

void logToStderr(const struct __android_logger_data* data, const char* message) {
  // Some library lines end in their own newline; print one either way.
  const size_t length = std::strlen(message);
  const bool newline = length > 0 && message[length - 1] == '\n';
  std::fprintf(stderr, "%s %c: %s%s", data->tag ? data->tag : "", priorityLetter(data->priority),
               message, newline ? "" : "\n");
}

void discard(const struct __android_logger_data*, const char*) {}

}  // namespace

void routeLibraryLog(bool verbose) {
  if (verbose) {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(logToStderr);
  } else {
    __android_log_set_logger(discard);
  }
}

}  // namespace tool
