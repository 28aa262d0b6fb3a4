// Cluster results: representative (medoid) features, the result list and the
// recommendation score.
#include <cstddef>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "clustering/feature_reset.h"
#include "clustering/thresholds.h"
#include "numeric/score_scale.h"
#include "platform/alloc_guard.h"

void FaceClusteringSystem::getClusterFeature(Cluster& cluster, Vec<int> indices) {
  detail::runOrLogAllocFailure("malloc fail!!!(in getClusterFeature(Cluster, ivec)", [&] {
    const int m = static_cast<int>(indices.size());
    cluster.members.reserve(cluster.members.size() + indices.size());
    const float inv = m > 1 ? 1.0f / static_cast<float>(m - 1) : 0.0f;

    // Starting at 0.0 with a strict comparison keeps face 0 when no member
    // has a positive mean similarity, and the earlier face on a tie.
    float bestScore = 0.0f;
    int best = 0;
    for (int t : indices) {
      cluster.members.push_back(faces[t].faceId);
      if (m > 1) {
        const Vec<float> row = kernel[t].subVec(indices);
        float sum = 0.0f;
        for (float similarity : row) sum += similarity;
        const float score = (sum - kernel[t][t]) * inv;
        if (score > bestScore) {
          bestScore = score;
          best = t;
        }
      } else {
        best = t;
      }
    }
    cluster.feature = featureMats[0][best];
    cluster.repFaceId = faces[best].faceId;
  });
}

Vec<float> FaceClusteringSystem::getClusterFeature(float* features, int count, Vec<int> ids,
                                                   int* repFaceId) {
  // The loaded faces go first, before the arguments are looked at.
  if (!detail::runOrLogAllocFailure(
          "malloc fail!!!(features assign in getClusterFeature(float*, int, ivec, int*)",
          [&] { detail::dropLoadedFaces(*this); })) {
    return Vec<float>();
  }
  if (features == nullptr || count <= 0) return Vec<float>();
  if (count == 1) return Vec<float>(features, features + detail::kFeatureDim);

  Vec<int> indices;
  if (!detail::runOrLogAllocFailure(
          "malloc fail!!!(add members in getClusterFeature(float*, int, ivec, int*)", [&] {
            for (int k = 0; k < count; ++k) {
              loadFeatureVector(features + static_cast<std::size_t>(detail::kFeatureDim) * k,
                                ids[k]);
              indices.push_back(k);
            }
          })) {
    return Vec<float>();
  }
  // A load that ran out of memory (logged by the loader) leaves fewer faces
  // than features; the medoid rule would then read past the kernel.
  if (static_cast<int>(faces.size()) != count || featureMats[0].rowCount() != count) {
    return Vec<float>();
  }

  Mat<int> unused;
  updateKernelwithFeatureMatching(featureMats, unused);
  // Likewise when sizing the kernel ran out of memory.
  if (static_cast<int>(kernel.size()) != count) return Vec<float>();
  Cluster representative;
  getClusterFeature(representative, std::move(indices));
  *repFaceId = representative.repFaceId;
  return representative.feature;
}

Vec<float> FaceClusteringSystem::getClusterFeature(float* features, int count) {
  if (features == nullptr || count <= 0) return Vec<float>();
  Vec<float> result;
  detail::runOrLogAllocFailure("malloc fail!!!(in getClusterFeature(float*, int)", [&] {
    Vec<int> ids(count);
    for (int k = 0; k < count; ++k) ids[k] = k;
    int repFaceId = 0;
    result = getClusterFeature(features, count, std::move(ids), &repFaceId);
  });
  return result;
}

std::vector<clusterinfo> FaceClusteringSystem::getClusterInfo() {
  clusterInfos.clear();
  for (const auto& entry : clusters) {
    const Cluster& cluster = entry.second;
    clusterinfo info;
    info.id = cluster.id;
    const bool membersCopied = detail::runOrLogAllocFailure(
        "malloc fail!!!(add members in getClusterInfo",
        [&] { info.faceIds.assign(cluster.members.begin(), cluster.members.end()); });
    // The bucket of unclustered faces has no representative.
    const bool recordAdded =
        membersCopied &&
        detail::runOrLogAllocFailure("malloc fail!!!(add cluster in getClusterInfo", [&] {
          if (info.id >= 0) {
            info.feature.assign(cluster.feature.begin(), cluster.feature.end());
            info.repFaceId = cluster.repFaceId;
          }
          clusterInfos.push_back(std::move(info));
        });
    if (!recordAdded) {
      clusterInfos.clear();
      return std::vector<clusterinfo>();
    }
  }
  return clusterInfos;
}

int FaceClusteringSystem::recommendCluster(float* clusterFeature, float* feature, int /*count*/) {
  auto* comparator = static_cast<CFRecogInterface*>(recognizer);
  const int score = detail::scoreOn1023Scale(comparator->RunComparison(clusterFeature, feature));
  if (score > detail::kScoreScaleMax) return detail::kScoreScaleMax;
  if (score > detail::kRecommendRejectAtOrBelow) return score;
  return -1;
}
