#include "tools/formats/feature_file.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <set>
#include <sstream>

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

int64_t intFromLittleEndian(const char* bytes, size_t width) {
  uint64_t bits = 0;
  for (size_t i = 0; i < width; ++i)
    bits |= static_cast<uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  if (width == 4) return static_cast<int32_t>(static_cast<uint32_t>(bits));
  return static_cast<int64_t>(bits);
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
    const uint64_t bits = static_cast<uint64_t>(intFromLittleEndian(data.data() + i, 8));
    double value;
    std::memcpy(&value, &bits, sizeof value);
    appendLittleEndian(narrowed, static_cast<float>(value));
  }
  return narrowed;
}

std::string shapeText(const std::vector<uint64_t>& shape) {
  std::string text = "(";
  for (size_t i = 0; i < shape.size(); ++i) text += (i ? ", " : "") + std::to_string(shape[i]);
  return text + ")";
}

}  // namespace

FeatureMatrix readFeatures(const std::string& path) {
  const std::string bytes = readWholeFile(path);
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
                      shapeText(array.shape));
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

std::vector<int> readIntList(const std::string& path, const std::string& what, bool allowPairs) {
  const std::string bytes = readWholeFile(path);
  std::vector<int64_t> wide;
  if (hasSuffix(path, ".npy")) {
    const NpyArray array = parseNpy(bytes, path);
    const size_t width = npyElementSize(array.descr);
    if (array.descr != "<i4" && array.descr != "<i8" && array.descr != "<u4") {
      throw ToolError(path + ": " + what +
                      " must be integers ('<i4', '<i8' or '<u4'), the file holds '" + array.descr +
                      "'");
    }
    const bool pairs = allowPairs && array.shape.size() == 2 && array.shape[1] == 2;
    if (array.shape.size() != 1 && !pairs) {
      throw ToolError(path + ": " + what + " must have shape (N,)" +
                      (allowPairs ? " or (N, 2)" : "") + ", the file holds " +
                      shapeText(array.shape));
    }
    if (array.descr == "<u4") {
      std::fprintf(stderr, "xvkfc: note: %s: uint32 %s read as int32\n", path.c_str(),
                   what.c_str());
    }
    for (size_t i = 0; i < static_cast<size_t>(array.elementCount()); ++i) {
      int64_t value = intFromLittleEndian(array.data.data() + i * width, width);
      if (array.descr == "<u4") value = static_cast<uint32_t>(value);
      wide.push_back(value);
    }
  } else {
    std::istringstream in(bytes);
    std::string word;
    while (in >> word) {
      size_t used = 0;
      long long value = 0;
      try {
        value = std::stoll(word, &used);
      } catch (const std::exception&) {
        used = 0;
      }
      if (used != word.size()) {
        throw ToolError(path + ": '" + word + "' is not an integer (" + what + " entry " +
                        std::to_string(wide.size()) + ")");
      }
      wide.push_back(value);
    }
  }
  std::vector<int> values;
  for (int64_t value : wide) {
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
      throw ToolError(path + ": " + what + " entry " + std::to_string(values.size()) +
                      " does not fit a 32-bit int");
    }
    values.push_back(static_cast<int>(value));
  }
  return values;
}

std::vector<int> readFaceIds(const std::string& path, int rows) {
  std::vector<int> ids;
  if (path.empty()) {
    for (int i = 0; i < rows; ++i) ids.push_back(i);
    return ids;
  }
  ids = readIntList(path, "face ids");
  if (ids.size() != static_cast<size_t>(rows)) {
    throw ToolError(path + ": holds " + std::to_string(ids.size()) + " face ids for " +
                    std::to_string(rows) + " features");
  }
  std::set<int> seen;
  for (int id : ids) {
    if (!seen.insert(id).second)
      throw ToolError(path + ": duplicate face id " + std::to_string(id));
  }
  return ids;
}

}  // namespace tool
