// FaceClusteringSystem::refineClustering: split-and-merge cycles, outlier
// pruning, and the rebuild of the cluster map.
#include <cstddef>
#include <map>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/kernel_block.h"
#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

namespace {

// Whether face members[u] leaves its cluster `members`, of which `others` + 1
// faces are still in it. As if on a copy of the kernel whose diagonal entry
// of the face and whose rows and columns of the faces already taken out
// (`out`) were zeroed: those entries count as 0.0 in the sum and the
// maximum, added in list order like every other entry. minAll reads the
// kernel itself, every member included. The comparisons are strict, so a
// NaN figure takes nobody out.
bool takesOut(const detail::Kernel& kernel, const Vec<int>& members, const std::vector<char>& out,
              std::size_t u, int others, float threshold) {
  if (others < 1) return true;
  const int face = members[u];
  const float minAll = detail::rowMinimum(kernel, face, members);
  const float* row = kernel[face].data();
  float sum = 0.0f;
  float maxRest = 0.0f;
  for (std::size_t v = 0; v < members.size(); ++v) {
    const float similarity = (v == u || out[v]) ? 0.0f : row[members[v]];
    sum += similarity;
    if (v == 0 || similarity > maxRest) maxRest = similarity;
  }
  const float meanRest = sum / static_cast<float>(others);
  const float bestBound = threshold + detail::kPruneBestMargin;
  return meanRest < threshold || maxRest < bestBound ||
         (others == 1 && minAll < detail::kPrunePairSimilarity);
}

// Takes the faces that do not fit out of every cluster (label -1), dissolves
// clusters left with fewer than two faces, and numbers the rest 0, 1, ...
// in the order of their old ids. Faces are examined once, in ascending
// order, so a kept face stays even if later removals would fail it. Each
// cluster reads only its own block of the kernel.
void pruneOutliers(const detail::Kernel& kernel, float threshold, Vec<int>& labels) {
  const int clusterCount = detail::largestLabel(labels) + 1;
  if (clusterCount < 1) return;
  const std::vector<Vec<int>> members =
      detail::membersByLabel(labels, static_cast<int>(kernel.size()), clusterCount);
  std::vector<char> out;  // per member of the cluster at hand: taken out
  int nextId = 0;
  for (const Vec<int>& cluster : members) {
    out.assign(cluster.size(), 0);
    int others = static_cast<int>(cluster.size()) - 1;
    for (std::size_t u = 0; u < cluster.size(); ++u) {
      if (takesOut(kernel, cluster, out, u, others, threshold)) {
        labels[cluster[u]] = -1;
        --others;
        out[u] = 1;
      } else {
        labels[cluster[u]] = nextId;
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
