// FaceClusteringSystem::refineClustering: split-and-merge cycles, outlier
// pruning, and the rebuild of the cluster map.
#include <cstddef>
#include <map>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

namespace {

using Kernel = std::vector<Vec<float>>;

void zeroRowAndColumn(Kernel& working, int face) {
  for (std::size_t j = 0; j < working.size(); ++j) {
    working[face][j] = 0.0f;
    working[j][face] = 0.0f;
  }
}

// Whether `face` leaves its cluster `members`, of which `others` + 1 faces
// are still in it. `working` holds 0 for the face itself and for every face
// already taken out; minAll reads the unchanged kernel. The comparisons are
// strict, so a NaN figure takes nobody out.
bool takesOut(const Kernel& kernel, Kernel& working, int face, const Vec<int>& members, int others,
              float threshold) {
  if (others < 1) return true;
  const Vec<float> all = kernel[face].subVec(members);
  float minAll = all[0];
  for (float similarity : all) {
    if (similarity < minAll) minAll = similarity;
  }
  working[face][face] = 0.0f;
  const Vec<float> rest = working[face].subVec(members);
  float sum = 0.0f;
  float maxRest = rest[0];
  for (float similarity : rest) {
    sum += similarity;
    if (similarity > maxRest) maxRest = similarity;
  }
  const float meanRest = sum / static_cast<float>(others);
  const float bestBound = threshold + detail::kPruneBestMargin;
  return meanRest < threshold || maxRest < bestBound ||
         (others == 1 && minAll < detail::kPrunePairSimilarity);
}

// Takes the faces that do not fit out of every cluster (label -1), dissolves
// clusters left with fewer than two faces, and numbers the rest 0, 1, ...
// in the order of their old ids. Faces are examined once, in ascending
// order, so a kept face stays even if later removals would fail it.
void pruneOutliers(const Kernel& kernel, float threshold, Vec<int>& labels) {
  const int clusterCount = detail::largestLabel(labels) + 1;
  if (clusterCount < 1) return;
  const std::vector<Vec<int>> members =
      detail::membersByLabel(labels, static_cast<int>(kernel.size()), clusterCount);
  int nextId = 0;
  for (const Vec<int>& cluster : members) {
    Kernel working = kernel;
    int others = static_cast<int>(cluster.size()) - 1;
    for (int face : cluster) {
      if (takesOut(kernel, working, face, cluster, others, threshold)) {
        labels[face] = -1;
        --others;
        zeroRowAndColumn(working, face);
      } else {
        labels[face] = nextId;
      }
    }
    if (others < 1) {
      for (int face : cluster) labels[face] = -1;
    } else {
      ++nextId;
    }
  }
}

}  // namespace

void FaceClusteringSystem::refineClustering(Vec<int>& labels, Mat<int> /*unused*/, float threshold,
                                            bool splitAndMerge) {
  if (splitAndMerge) {
    // No early stop: a cycle that changes nothing is run all the same.
    for (int cycle = 0; cycle < detail::kRefineCycles; ++cycle) {
      ClusterSplit(labels);
      MergeClusters(labels, true);
    }
  }

  if (!detail::runOrLogAllocFailure("malloc fail!!!(add members vector in refineClustering",
                                    [&] { pruneOutliers(kernel, threshold, labels); })) {
    return;
  }

  // Faces labelled -2 stay out of the map; the unclustered ones form the
  // cluster -1, first in the map.
  std::map<int, Cluster> rebuilt;
  for (std::size_t i = 0; i < kernel.size(); ++i) {
    const int label = labels[i];
    if (label == -2) continue;
    auto found = rebuilt.find(label);
    if (found == rebuilt.end()) {
      Cluster cluster;
      cluster.init(label);
      found = rebuilt.emplace(label, cluster).first;
    }
    found->second.members.push_back(static_cast<int>(i));
    // A face record can be missing when loading it ran out of memory.
    if (i < faces.size()) faces[i].clusterId = label;
  }
  clusters = rebuilt;
  clusterCount = static_cast<int>(rebuilt.size());
}
