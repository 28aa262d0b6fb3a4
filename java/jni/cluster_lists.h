// Conversion between org.xvkfc.Cluster[] and the library's cluster lists.
#ifndef XVKFC_JAVA_JNI_CLUSTER_LISTS_H_
#define XVKFC_JAVA_JNI_CLUSTER_LISTS_H_

#include <jni.h>

#include <vector>

#include "interface/exchange_records.h"

namespace jni {

// A native copy of a Cluster[]: owns every array its list points to, so the
// list stays valid for a whole run without pinning anything. Not copyable.
class ClusterListCopy {
 public:
  ClusterListCopy() = default;
  ClusterListCopy(const ClusterListCopy&) = delete;
  ClusterListCopy& operator=(const ClusterListCopy&) = delete;

  // Copies `clusters` (null: no clusters). Returns false with a Java
  // exception pending for a null element or a field a Cluster cannot hold
  // (null face ids, a feature neither empty nor 960 floats).
  bool copyFrom(JNIEnv* env, jobjectArray clusters);

  // The list as itf_xvk_runClustering and itf_xvk_recommendCluster read it;
  // items is null when there are no clusters.
  itf_xvk_clusterinfo* list() { return &list_; }

 private:
  std::vector<itf_xvk_clusteritem> items_;
  std::vector<std::vector<int>> faceIds_;
  std::vector<std::vector<float>> features_;
  itf_xvk_clusterinfo list_{0, nullptr};
};

// A new Cluster[] with one Cluster per element of `list`, in its order; a
// featureDim of 0 gives a null feature. Null with a Java exception pending
// when the JVM runs out of memory.
jobjectArray toJavaClusters(JNIEnv* env, const itf_xvk_clusterinfo& list);

}  // namespace jni

#endif  // XVKFC_JAVA_JNI_CLUSTER_LISTS_H_
