#include "support/log_capture.h"

#include <android/log.h>

#include "support/alloc_failure.h"

namespace testing_support {
namespace {

LogCapture* active = nullptr;

void captureLine(const struct __android_logger_data* data, const char* message) {
  if (active == nullptr) return;
  alloc_failure::Suspended notTheEngines;
  active->lines.push_back({data->priority, data->tag ? data->tag : "", message});
}

}  // namespace

LogCapture::LogCapture() {
  __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
  __android_log_set_logger(captureLine);
  active = this;
}

LogCapture::~LogCapture() {
  active = nullptr;
  __android_log_set_logger(__android_log_stderr_logger);
}

std::vector<std::string> LogCapture::messages() const {
  std::vector<std::string> out;
  for (const LogLine& line : lines) out.push_back(line.message);
  return out;
}

}  // namespace testing_support
