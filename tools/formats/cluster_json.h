// The clusters file: one JSON document that a run writes and the next run
// reads back as the clusters the application already has.
//
//   {"format": "xvkfc-clusters", "version": 1, "feature_dim": 960,
//    "clusters": [
//      {"cluster_id": -1, "face_ids": [4, 9], "representative_face_id": -1,
//       "representative_feature": null},
//      {"cluster_id": 0, "face_ids": [1, 2, 7], "representative_face_id": 2,
//       "representative_feature": [960 numbers]}, ...]}
//
// Cluster -1 is the bucket of unclustered faces and has no representative.
// A cluster 0 or above with "representative_feature": null is one whose
// representative the library could not compute (featureDim 0).
// Floats are written with nine significant digits, which reads back as the
// same float32.
#ifndef XVKFC_TOOLS_FORMATS_CLUSTER_JSON_H_
#define XVKFC_TOOLS_FORMATS_CLUSTER_JSON_H_

#include <string>
#include <vector>

#include "tools/cluster_records.h"

namespace tool {

// The JSON text of `clusters`, in the given order.
std::string clustersToJson(const std::vector<ClusterRecord>& clusters);

// Parses a clusters document. `source` names it in messages. Throws
// ToolError for malformed JSON, another "format", a "version" above 1, a missing or mistyped field,
// a cluster id below -1, the same cluster id twice, a face listed twice in one cluster, or a
// representative feature that is neither null nor 960 finite numbers. A face may appear in two
// clusters: the library itself puts an unclustered face into every existing cluster it matches.
std::vector<ClusterRecord> clustersFromJson(const std::string& text, const std::string& source);

// Reads and parses a clusters file.
std::vector<ClusterRecord> readClusters(const std::string& path);

// Writes a clusters file without ever leaving a partial file.
void writeClusters(const std::string& path, const std::vector<ClusterRecord>& clusters);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_CLUSTER_JSON_H_
