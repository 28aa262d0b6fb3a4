// The program's record of a cluster, shared by the file formats, the runs
// and the report, and its views as the library's exchange list.
#ifndef XVKFC_TOOLS_CLUSTER_RECORDS_H_
#define XVKFC_TOOLS_CLUSTER_RECORDS_H_

#include <vector>

#include "interface/face_recognition.h"

namespace tool {

// One cluster as the library reports it (itf_xvk_clusteritem) and takes it
// back.
struct ClusterRecord {
  int id = -1;                 // >= 0, or -1 for the unclustered bucket
  std::vector<int> faceIds;    // members, in the library's order
  int repFaceId = -1;          // representative face; -1 for the bucket
  std::vector<float> feature;  // 960 floats; empty for the bucket and featureDim 0
};

// Views of the program's records as the library's exchange records. The
// library only reads a list it is given, so the pointers may alias the
// records' own storage.
class ExchangeList {
 public:
  explicit ExchangeList(const std::vector<ClusterRecord>& clusters) {
    for (const ClusterRecord& record : clusters) {
      itf_xvk_clusteritem item;
      item.clusterId = record.id;
      item.faceCount = static_cast<int>(record.faceIds.size());
      item.faceIds = const_cast<int*>(record.faceIds.data());
      item.featureDim = static_cast<int>(record.feature.size());
      item.feature = record.feature.empty() ? nullptr : const_cast<float*>(record.feature.data());
      item.repFaceId = record.repFaceId;
      items_.push_back(item);
    }
    list_.count = static_cast<int>(items_.size());
    list_.items = items_.empty() ? nullptr : items_.data();
  }
  itf_xvk_clusterinfo* get() { return &list_; }

 private:
  std::vector<itf_xvk_clusteritem> items_;
  itf_xvk_clusterinfo list_{};
};

// The program's records of a list the library filled (itf_xvk_getClusterInfo
// or an operation that writes the same list); the list stays the caller's.
std::vector<ClusterRecord> recordsOf(const itf_xvk_clusterinfo& list);

// evaluation::clusterOfFaces over the program's records: the cluster of each
// face in `faceIds`, a label of its own below -1 for a face in no real cluster.
std::vector<int> clusterOfFaces(const std::vector<ClusterRecord>& clusters,
                                const std::vector<int>& faceIds);

}  // namespace tool

#endif  // XVKFC_TOOLS_CLUSTER_RECORDS_H_
