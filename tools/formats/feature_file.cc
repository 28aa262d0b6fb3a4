#include "tools/formats/feature_file.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "tools/formats/atomic_file.h"
#include "tools/formats/file_kind.h"
#include "tools/formats/npy.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

constexpr size_t kFeatureBytes = kFeatureDim * sizeof(float);

// How far a raw feature's length may be from 1. The extractor writes
// unit-length features, so a float32 feature is within about 1e-6 of 1 and
// one stored at half precision within about 1e-3; bytes of another layout
// read as float32 (float64, ints, text) land far off, often by orders of
// magnitude.
constexpr double kRawNormTolerance = 0.01;

const char kRawHint[] =
    "raw features are unit-length little-endian float32, 960 a face; for float64 or any "
    "other layout save a NumPy file (numpy.save)";

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

bool isRawFeatureName(const std::string& path) {
  return hasSuffix(path, ".f32") || hasSuffix(path, ".raw");
}

FeatureMatrix parseFeatures(const std::string& bytes, const std::string& path) {
  const FileKind kind = fileKindOf(bytes);
  if (kind == FileKind::kNumpy) {
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
  const std::string looksLike =
      kind == FileKind::kOther ? "" : std::string(", it looks like ") + fileKindName(kind);
  if (!isRawFeatureName(path)) {
    throw ToolError(path + ": not a NumPy file" + looksLike +
                    ": features are a NumPy float32 or float64 array of shape (N, 960), or raw "
                    "float32 in a file named *.f32 or *.raw");
  }
  try {
    if (bytes.size() % kFeatureBytes != 0) {
      throw ToolError(path + ": " + std::to_string(bytes.size()) +
                      " bytes do not divide into features of 3840 bytes (960 float32)");
    }
    FeatureMatrix features = featuresFromBytes(bytes, path);
    for (int i = 0; i < features.rows(); ++i) {
      double squares = 0;
      for (int j = 0; j < kFeatureDim; ++j)
        squares += double{features.row(i)[j]} * features.row(i)[j];
      const double norm = std::sqrt(squares);
      if (!(std::fabs(norm - 1) <= kRawNormTolerance)) {
        char length[32];
        std::snprintf(length, sizeof length, "%.4g", norm);
        throw ToolError(path + ": feature " + std::to_string(i) + " has length " + length +
                        ", not 1");
      }
    }
    return features;
  } catch (const ToolError& e) {
    if (bytes.empty()) throw;
    throw ToolError(e.what() + looksLike + "; " + kRawHint);
  }
}

std::string encodeFeatures(const std::string& path, const FeatureMatrix& features) {
  std::string data;
  data.reserve(features.values.size() * sizeof(float));
  for (float value : features.values) appendLittleEndian(data, value);
  if (isRawFeatureName(path)) return data;
  return encodeNpy("<f4", {static_cast<uint64_t>(features.rows()), kFeatureDim}, data);
}

void writeFeatures(const std::string& path, const FeatureMatrix& features) {
  writeFileAtomically(path, encodeFeatures(path, features));
}

}  // namespace tool
