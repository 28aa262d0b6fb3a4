// The assignments file (--assignments): the cluster of every face of the
// input, in input order, for a NumPy or scikit-learn user.
//
//   *.npy  int32 array of shape (N, 2): face id, cluster id per row
//   other  text, one line "FACE_ID<TAB>CLUSTER_ID" per face
//
// An unclustered face gets -1. The library may list a face in two clusters
// (an unclustered face joins every existing cluster it matches at 0.9):
// such a face gets the first real cluster that lists it in the clusters
// file, which is the one with the lowest id.
#ifndef XVKFC_TOOLS_FORMATS_ASSIGNMENTS_H_
#define XVKFC_TOOLS_FORMATS_ASSIGNMENTS_H_

#include <string>
#include <vector>

#include "tools/formats/cluster_json.h"

namespace tool {

// The cluster id of each face of `faceIds` under the rule above.
std::vector<int> assignClusters(const std::vector<ClusterRecord>& clusters,
                                const std::vector<int>& faceIds);

// The file bytes for `path` (layout by name).
std::string encodeAssignments(const std::string& path, const std::vector<int>& faceIds,
                              const std::vector<int>& clusterIds);

// Writes the assignments file without ever leaving a partial file.
void writeAssignments(const std::string& path, const std::vector<ClusterRecord>& clusters,
                      const std::vector<int>& faceIds);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_ASSIGNMENTS_H_
