#include "tools/formats/cluster_json.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "tools/formats/atomic_file.h"
#include "tools/formats/feature_file.h"
#include "tools/formats/file_kind.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

// The smallest magnitude that rounds to infinity as a float: the largest float
// plus half a unit in its last place (2^127 * 2^-24).
constexpr double kFloatOverflow = double{std::numeric_limits<float>::max()} + 0x1p103;

using nlohmann::json;

constexpr const char* kFormat = "xvkfc-clusters";
constexpr int kVersion = 1;

// A JSON number that prints with at most nine significant digits and still
// converts back to exactly `value`: nine digits identify every float32.
json shortFloat(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
  return json(std::strtod(text, nullptr));
}

// True when `value` is an integer that fits an int; stores it in `out`.
bool asInt(const json& value, int& out) {
  if (value.is_number_unsigned()) {
    if (value.get<unsigned long long>() > std::numeric_limits<int>::max()) return false;
  } else if (!value.is_number_integer() ||
             value.get<long long>() < std::numeric_limits<int>::min() ||
             value.get<long long>() > std::numeric_limits<int>::max()) {
    return false;
  }
  out = value.get<int>();
  return true;
}

int intField(const json& cluster, const char* key, const std::string& where) {
  const auto it = cluster.find(key);
  if (it == cluster.end()) throw ToolError(where + ": missing \"" + key + "\"");
  int value = 0;
  if (!asInt(*it, value)) throw ToolError(where + ": \"" + key + "\" must be an integer");
  return value;
}

ClusterRecord parseCluster(const json& cluster, const std::string& where) {
  if (!cluster.is_object()) throw ToolError(where + ": a cluster must be a JSON object");
  ClusterRecord record;
  record.id = intField(cluster, "cluster_id", where);
  if (record.id < -1) {
    throw ToolError(where + ": cluster id " + std::to_string(record.id) +
                    " is below -1 (only -1 marks the unclustered faces)");
  }
  const auto faces = cluster.find("face_ids");
  if (faces == cluster.end() || !faces->is_array()) {
    throw ToolError(where + ": \"face_ids\" must be an array of integers");
  }
  std::set<int> seen;
  for (const json& face : *faces) {
    int id = 0;
    if (!asInt(face, id)) throw ToolError(where + ": \"face_ids\" must hold integers");
    if (!seen.insert(id).second) {
      throw ToolError(where + ": duplicate face id " + std::to_string(id));
    }
    record.faceIds.push_back(id);
  }
  if (record.id == -1) return record;

  record.repFaceId = intField(cluster, "representative_face_id", where);
  const auto feature = cluster.find("representative_feature");
  // null: a cluster whose representative the library could not compute for
  // lack of memory (featureDim 0); the library takes it back as it is.
  if (feature != cluster.end() && feature->is_null()) return record;
  if (feature == cluster.end() || !feature->is_array() || feature->size() != kFeatureDim) {
    throw ToolError(where + ": \"representative_feature\" must be null or an array of 960 numbers");
  }
  for (const json& value : *feature) {
    // 1e39 is finite as a double but infinite as the float the library takes.
    if (!value.is_number() || !(std::fabs(value.get<double>()) < kFloatOverflow)) {
      throw ToolError(where + ": \"representative_feature\" must hold finite float32 numbers");
    }
    record.feature.push_back(value.get<float>());
  }
  return record;
}

// Refuses a document without this format's name or of another format, one
// whose features are not 960 floats, or of a version newer than this program
// writes: a newer writer may have added meaning this reader would drop. A
// file without "version" is read as version 1.
void checkFormat(const json& document, const std::string& source) {
  if (!document.is_object()) return;  // reported as a missing "clusters" array
  const auto format = document.find("format");
  if (format == document.end()) {
    throw ToolError(source + ": no \"format\": a clusters file starts {\"format\": \"" + kFormat +
                    "\", \"clusters\": [...]}");
  }
  if (*format != kFormat) {
    throw ToolError(source + ": not a clusters file (format " +
                    format->dump(-1, ' ', false, json::error_handler_t::replace) + ", expected \"" +
                    kFormat + "\")");
  }
  const auto dim = document.find("feature_dim");
  if (dim != document.end() && *dim != kFeatureDim) {
    throw ToolError(source + ": \"feature_dim\" must be " + std::to_string(kFeatureDim) +
                    ", the floats in one of the library's features");
  }
  const auto version = document.find("version");
  if (version == document.end()) return;
  int number = 0;
  if (!asInt(*version, number) || number < 1) {
    throw ToolError(source + ": \"version\" must be a positive integer");
  }
  if (number > kVersion) {
    throw ToolError(source + ": clusters file version " + std::to_string(number) +
                    " is newer than this program reads (" + std::to_string(kVersion) +
                    "); use a newer xvkfc");
  }
}

}  // namespace

std::string clustersToJson(const std::vector<ClusterRecord>& clusters) {
  json list = json::array();
  for (const ClusterRecord& record : clusters) {
    json cluster;
    cluster["cluster_id"] = record.id;
    cluster["face_ids"] = record.faceIds;
    cluster["representative_face_id"] = record.repFaceId;
    if (record.feature.empty()) {
      cluster["representative_feature"] = nullptr;
    } else {
      json feature = json::array();
      for (float value : record.feature) feature.push_back(shortFloat(value));
      cluster["representative_feature"] = std::move(feature);
    }
    list.push_back(std::move(cluster));
  }
  json document;
  document["format"] = kFormat;
  document["version"] = kVersion;
  document["feature_dim"] = kFeatureDim;
  document["clusters"] = std::move(list);
  return document.dump(1) + "\n";
}

std::vector<ClusterRecord> clustersFromJson(const std::string& text, const std::string& source) {
  const FileKind kind = fileKindOf(text);
  if (kind != FileKind::kJson && kind != FileKind::kOther) {
    throw ToolError(source + ": looks like " + fileKindName(kind) +
                    ", not a clusters file (JSON, as cluster -o writes it)");
  }
  json document;
  try {
    document = json::parse(text);
  } catch (const json::parse_error& e) {
    throw ToolError(source + ": malformed JSON (byte " + std::to_string(e.byte) + ")");
  } catch (const json::exception&) {  // a number past double, 1E99999: out_of_range
    throw ToolError(source + ": malformed JSON (a number out of range)");
  }
  checkFormat(document, source);
  if (!document.contains("clusters") || !document["clusters"].is_array()) {
    throw ToolError(source + ": not a clusters file (no \"clusters\" array)");
  }
  std::vector<ClusterRecord> clusters;
  std::set<int> ids;
  for (size_t i = 0; i < document["clusters"].size(); ++i) {
    const std::string where = source + ": cluster " + std::to_string(i);
    ClusterRecord record = parseCluster(document["clusters"][i], where);
    if (!ids.insert(record.id).second) {
      throw ToolError(where + ": duplicate cluster id " + std::to_string(record.id));
    }
    clusters.push_back(std::move(record));
  }
  return clusters;
}

std::vector<ClusterRecord> readClusters(const std::string& path) {
  return clustersFromJson(readWholeFile(path), path);
}

void writeClusters(const std::string& path, const std::vector<ClusterRecord>& clusters) {
  writeFileAtomically(path, clustersToJson(clusters));
}

}  // namespace tool
