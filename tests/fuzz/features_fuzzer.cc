// The features reader on any bytes, under a raw name so that both layouts
// are read (NumPy by its magic, anything else as raw float32): a feature
// matrix or a ToolError, nothing else (no other exception, no sanitizer
// report).
#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/formats/feature_file.h"
#include "tools/tool_error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const tool::FeatureMatrix features =
        tool::parseFeatures(std::string(reinterpret_cast<const char*>(data), size), "f.f32");
    if (features.rows() < 1 || features.values.size() % tool::kFeatureDim != 0) __builtin_trap();
  } catch (const tool::ToolError&) {
  }
  return 0;
}
