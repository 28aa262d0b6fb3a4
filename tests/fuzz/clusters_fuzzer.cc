// The clusters file reader on any bytes: clusters or a ToolError. What it
// accepts must come back unchanged through the writer, featureDim-0
// clusters included.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/formats/cluster_json.h"
#include "tools/tool_error.h"

namespace {

bool same(const tool::ClusterRecord& a, const tool::ClusterRecord& b) {
  return a.id == b.id && a.faceIds == b.faceIds && a.repFaceId == b.repFaceId &&
         a.feature == b.feature;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<tool::ClusterRecord> clusters;
  try {
    clusters =
        tool::clustersFromJson(std::string(reinterpret_cast<const char*>(data), size), "c.json");
  } catch (const tool::ToolError&) {
    return 0;
  }
  const std::vector<tool::ClusterRecord> again =
      tool::clustersFromJson(tool::clustersToJson(clusters), "again.json");
  if (again.size() != clusters.size()) __builtin_trap();
  for (size_t i = 0; i < clusters.size(); ++i) {
    if (!same(clusters[i], again[i])) __builtin_trap();
  }
  return 0;
}
