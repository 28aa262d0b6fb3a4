#include "tools/formats/assignments.h"

#include <cstdint>

#include "tools/cluster_records.h"
#include "tools/formats/atomic_file.h"
#include "tools/formats/npy.h"

namespace tool {
std::vector<int> assignClusters(const std::vector<ClusterRecord>& clusters,
                                const std::vector<int>& faceIds) {
  // clusterOfFaces gives faces in no real cluster labels below -1 of their own.
  std::vector<int> ids = clusterOfFaces(clusters, faceIds);
  for (int& id : ids) id = id < 0 ? -1 : id;
  return ids;
}

std::string encodeAssignments(const std::string& path, const std::vector<int>& faceIds,
                              const std::vector<int>& clusterIds) {
  if (hasSuffix(path, ".npy")) {
    std::vector<int> pairs;
    for (size_t i = 0; i < faceIds.size(); ++i) {
      pairs.push_back(faceIds[i]);
      pairs.push_back(clusterIds[i]);
    }
    return encodeNpy("<i4", {faceIds.size(), 2}, int32Data(pairs));
  }
  std::string out;
  for (size_t i = 0; i < faceIds.size(); ++i) {
    out += std::to_string(faceIds[i]) + "\t" + std::to_string(clusterIds[i]) + "\n";
  }
  return out;
}

void writeAssignments(const std::string& path, const std::vector<ClusterRecord>& clusters,
                      const std::vector<int>& faceIds) {
  writeFileAtomically(path, encodeAssignments(path, faceIds, assignClusters(clusters, faceIds)));
}

}  // namespace tool
