// One clustering run: kernel, refinement, merge with the application's
// clusters, and the reset that readies the engine for the next batch.
#include "clustering/face_clustering_system.h"
#include "clustering/feature_reset.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

void FaceClusteringSystem::clusteringFace(std::vector<clusterinfo> existing) {
  // featureMats is empty only after a reset that ran out of memory; nothing
  // is loaded then.
  const int n = featureMats.empty() ? 0 : featureMats[0].rowCount();
  if (n > 0) {
    clusters.clear();
    Mat<int> unused;
    updateKernelwithFeatureMatching(featureMats, unused);
    clusters.clear();
    Vec<int> labels;
    // Without labels nothing can run; the batch stays loaded.
    if (!detail::runOrLogAllocFailure("malloc fail!!!(init labels in clusteringFace",
                                      [&] { labels.assign(n, 0); })) {
      return;
    }
    refineClustering(labels, unused, detail::kPruneThreshold, true);
    mergeInitialCluster(existing);
  }

  // A run without new faces keeps the previous clusters; either way the next
  // run starts from newly loaded faces.
  detail::runOrLogAllocFailure("malloc fail!!!(in clusteringFace",
                               [&] { detail::dropLoadedFaces(*this); });
}
