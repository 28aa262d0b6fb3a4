#include "tools/formats/feature_file.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "tools/formats/atomic_file.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

constexpr size_t kFeatureBytes = kFeatureDim * sizeof(float);

float floatFromLittleEndian(const char* bytes) {
  uint32_t bits = 0;
  for (int i = 0; i < 4; ++i)
    bits |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

void appendLittleEndian(std::string& out, float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  for (int i = 0; i < 4; ++i) out += static_cast<char>((bits >> (8 * i)) & 0xff);
}

FeatureMatrix featuresFromBytes(const std::string& data, const std::string& source) {
  FeatureMatrix features;
  features.values.resize(data.size() / sizeof(float));
  for (size_t i = 0; i < features.values.size(); ++i) {
    const float value = floatFromLittleEndian(data.data() + i * sizeof(float));
    if (!std::isfinite(value)) {
      throw ToolError(source + ": feature " + std::to_string(i / kFeatureDim) +
                      " has a value that is not finite (element " +
                      std::to_string(i % kFeatureDim) + ")");
    }
    features.values[i] = value;
  }
  if (features.rows() == 0) throw ToolError(source + ": holds no features");
  return features;
}

// float64 values as float32 bytes, rounded to nearest; a value beyond the
// float range becomes infinite and is refused as not finite.
std::string narrowDoubles(const std::string& data, const std::string& source) {
  std::fprintf(stderr, "xvkfc: note: %s: float64 features converted to float32\n", source.c_str());
  std::string narrowed;
  narrowed.reserve(data.size() / 2);
  for (size_t i = 0; i + sizeof(double) <= data.size(); i += sizeof(double)) {
    const uint64_t bits = static_cast<uint64_t>(npyLittleEndianInt(data.data() + i, 8));
    double value;
    std::memcpy(&value, &bits, sizeof value);
    appendLittleEndian(narrowed, static_cast<float>(value));
  }
  return narrowed;
}

}  // namespace

FeatureMatrix readFeatures(const std::string& path) {
  return parseFeatures(readWholeFile(path), path);
}

FeatureMatrix parseFeatures(const std::string& bytes, const std::string& path) {
  if (hasSuffix(path, ".npy")) {
    const NpyArray array = parseNpy(bytes, path);
    if (array.descr != "<f4" && array.descr != "<f8") {
      throw ToolError(path +
                      ": features must be float32 ('<f4') or float64 ('<f8'), the file "
                      "holds '" +
                      array.descr + "'");
    }
    const bool oneFeature = array.shape.size() == 1 && array.shape[0] == kFeatureDim;
    const bool matrix = array.shape.size() == 2 && array.shape[1] == kFeatureDim;
    if (!oneFeature && !matrix) {
      throw ToolError(path + ": features must have shape (N, 960), the file holds " +
                      npyShapeText(array.shape));
    }
    if (array.descr == "<f8") return featuresFromBytes(narrowDoubles(array.data, path), path);
    return featuresFromBytes(array.data, path);
  }
  if (bytes.size() % kFeatureBytes != 0) {
    throw ToolError(path +
                    ": truncated: raw features are multiples of 3840 bytes (960 float32), "
                    "the file has " +
                    std::to_string(bytes.size()) + " bytes");
  }
  return featuresFromBytes(bytes, path);
}

std::string encodeFeatures(const std::string& path, const FeatureMatrix& features) {
  std::string data;
  data.reserve(features.values.size() * sizeof(float));
  for (float value : features.values) appendLittleEndian(data, value);
  if (!hasSuffix(path, ".npy")) return data;
  return encodeNpy("<f4", {static_cast<uint64_t>(features.rows()), kFeatureDim}, data);
}

void writeFeatures(const std::string& path, const FeatureMatrix& features) {
  writeFileAtomically(path, encodeFeatures(path, features));
}

}  // namespace tool
