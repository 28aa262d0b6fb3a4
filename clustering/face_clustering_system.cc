#include "clustering/face_clustering_system.h"

#include "clustering/feature_reset.h"
#include "platform/alloc_guard.h"

int FaceClusteringSystem::init(void* recognizerObject) {
  if (recognizerObject == nullptr) return 0;
  recognizer = recognizerObject;
  initialFaceCount = 0;
  clusterCount = 0;
  faces.clear();
  clusters.clear();
  clusterInfos.clear();
  featureMats.clear();
  kernel.clear();

  // The bucket that collects unclustered faces.
  Cluster unclustered;
  unclustered.id = -1;
  clusters[-1] = unclustered;

  if (!detail::runOrLogAllocFailure("malloc fail!!!(in init()",
                                    [&] { detail::resetFeatureMats(featureMats, emptyFeatureMat); })) {
    return 0;
  }
  return 1;
}
