// FaceClusteringSystem::clustering: the spectral path over the whole kernel.
#include <algorithm>
#include <cstddef>

#include "clustering/face_clustering_system.h"
#include "clustering/thresholds.h"
#include "numeric/mat_ops.h"
#include "numeric/spectral.h"

void FaceClusteringSystem::clustering(Vec<int>& labels, float threshold) {
  const int n = static_cast<int>(kernel.size());
  labels.clear();
  labels.resize(n, 0);

  // A face stays in only if some other face reaches `threshold` with it; a
  // NaN best fails the test and sets the face aside.
  Vec<int> kept;
  for (int i = 0; i < n; ++i) {
    Vec<float> others = kernel[i];
    others[i] = 0.0f;
    const float best = *std::max_element(others.begin(), others.end());
    if (best >= threshold) {
      kept.push_back(i);
    } else {
      labels[i] = -1;
    }
  }
  if (kept.empty()) return;

  Mat<float> restricted;
  for (int face : kept) restricted.rows.push_back(kernel[face].subVec(kept));

  // Grouped before thresholding; the group count becomes the cluster count.
  Vec<int> groups;
  const int groupCount = kernelToLabels(restricted, groups, detail::kGroupSimilarity);
  thresholding(restricted, detail::kGroupSimilarity);
  Vec<int> spectral;
  if (spectralClustering(restricted, groupCount, groups, spectral) == 0) {
    labels.assign(n, -1);
    return;
  }
  for (std::size_t r = 0; r < kept.size(); ++r) labels[kept[r]] = spectral[r];
}
