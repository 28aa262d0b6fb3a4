// The planned import's current list of clusters, kept by the import itself so
// that each run is fed only the clusters it can match and its result is put
// back in their place.
//
// Faces and clusters are known by node numbers: new face `row` (its row in
// the import's input) is node `row`; the application's cluster with a
// representative feature, the p-th such, is node faces + p (a probe). A
// cluster's slot is its place in the list: the application's clusters come
// first, in their order, and a cluster a run makes takes the slot of the
// lowest fed cluster it holds faces of, or a new slot at the end.
#ifndef XVKFC_PLANNING_CURRENT_CLUSTERS_H_
#define XVKFC_PLANNING_CURRENT_CLUSTERS_H_

#include <unordered_map>
#include <vector>

#include "interface/exchange_records.h"
#include "planning/face_links.h"

namespace detail {

class CurrentClusters {
 public:
  // Starts from the application's list `existing` (null for none; copied,
  // not kept): its clusters, and its bucket's faces in the bucket. `faceIds`
  // are the ids of the `faces` new faces.
  CurrentClusters(const int* faceIds, int faces, const itf_xvk_clusterinfo* existing);

  // The representative features of the application's clusters, probe by
  // probe (copies, which the comparator may write through).
  std::vector<float*> probeRows();

  // Slots (ascending) of the clusters holding a node linked to one of `rows`
  // in `links`, whose node n stands for node nodeOf[n] here (nodeOf empty:
  // the same number).
  void addMatches(const std::vector<int>& rows, const FaceLinks& links,
                  const std::vector<int>& nodeOf, std::vector<int>& slots) const;

  // The clusters in `slots` as a list to feed a run, numbered 0, 1, ...;
  // it points into them and into `items`.
  itf_xvk_clusterinfo feedList(const std::vector<int>& slots,
                               std::vector<itf_xvk_clusteritem>& items);

  // Replaces the clusters in `fedSlots` by the clusters of a run's `result`;
  // the faces of its bucket go to the bucket.
  void stitch(const itf_xvk_clusterinfo& result, const std::vector<int>& fedSlots);

  bool isClustered(int row) const { return clusterOf_[row] >= 0; }
  // Takes the faces with ids in `sortedIds` out of the bucket.
  void takeFromBucket(const std::vector<int>& sortedIds);

  // The list as itf_xvk_getClusterInfo writes it: bucket first (its faces
  // then `alsoUnclustered`), then the clusters numbered 0, 1, ... in slot
  // order. It points into the clusters, `items` and `bucket`.
  itf_xvk_clusterinfo view(const std::vector<int>& alsoUnclustered,
                           std::vector<itf_xvk_clusteritem>& items, std::vector<int>& bucket);
  // The same in malloc'd arrays, for itf_xvk_releaseClusterInfo. False
  // (nothing allocated) when memory runs out.
  bool handOut(const std::vector<int>& alsoUnclustered, itf_xvk_clusterinfo* out);

 private:
  struct Cluster {
    std::vector<int> faceIds;
    std::vector<float> feature;  // 960 floats, or empty
    int repFaceId = -1;
    bool alive = true;
  };
  void setCluster(int slot, const itf_xvk_clusteritem& item);

  int faces_;
  std::vector<Cluster> clusters_;
  std::vector<int> bucket_;
  std::vector<int> probeSlot_;                // slot of each probe
  std::vector<int> clusterOf_;                // slot of each node, -1 for none
  std::unordered_map<int, int> nodeOfFace_;   // face id -> node
};

}  // namespace detail

#endif  // XVKFC_PLANNING_CURRENT_CLUSTERS_H_
