// FaceClusteringSystem::ClusterSplit: a 2-means cut of every cluster that is
// not tight enough.
#include <cstddef>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/kernel_block.h"
#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "numeric/kmeans.h"
#include "platform/alloc_guard.h"

namespace {

// Work lists of one ClusterSplit call, reused from split to split.
struct SplitBuffers {
  Vec<int> seedGroups;
  Vec<int> groups;
  detail::TwoMeansScratch scratch;
  std::vector<float> rowSums;
};

// Mean similarity over the ordered pairs of distinct faces of `members`:
// per face, its row sum over the cluster less its own entry, over m - 1.
float tightness(const detail::Kernel& kernel, const Vec<int>& members, SplitBuffers& buffers) {
  const int m = static_cast<int>(members.size());
  detail::blockRowSums(kernel, members, buffers.scratch.runs, buffers.rowSums);
  float score = 0.0f;
  for (int u = 0; u < m; ++u) {
    const int face = members[u];
    score += (buffers.rowSums[u] - kernel[face][face]) * (1.0f / static_cast<float>(m - 1));
  }
  return score / static_cast<float>(m);
}

// The position in `members` of the face that seeds the second group, or -1
// when the cluster is kept. The three tests are tried in this order.
int splitSeed(const detail::Kernel& kernel, const Vec<int>& members, SplitBuffers& buffers) {
  if (tightness(kernel, members, buffers) < detail::kSplitSimilarity) return 0;
  if (members.size() == 2 && kernel[members[0]][members[1]] < detail::kSplitPairSimilarity) {
    return 0;
  }
  for (std::size_t u = 0; u < members.size(); ++u) {
    if (detail::rowMinimum(kernel, members[u], members) < detail::kSplitSimilarity) {
      return static_cast<int>(u);
    }
  }
  return -1;
}

// 2-means on the cluster's own kernel block, read in place; the faces that
// end in group 1 get the next id above every id in use.
void split(const detail::Kernel& kernel, const Vec<int>& members, int seed, SplitBuffers& buffers,
           Vec<int>& labels) {
  const int m = static_cast<int>(members.size());
  buffers.seedGroups.assign(m, 0);
  buffers.seedGroups[seed] = 1;
  detail::twoMeansOnBlock(kernel, members, buffers.seedGroups, buffers.groups, buffers.scratch);
  const int newId = detail::largestLabel(labels) + 1;
  for (int u = 0; u < m; ++u) {
    if (buffers.groups[u] == 1) labels[members[u]] = newId;
  }
}

}  // namespace

void FaceClusteringSystem::ClusterSplit(Vec<int>& labels) {
  detail::runOrLogAllocFailure("malloc fail!!!(in ClusterSplit", [&] {
    // Fixed here: clusters made by this call are not visited.
    const int clusterCount = detail::largestLabel(labels) + 1;
    if (clusterCount < 1) return;
    const std::vector<Vec<int>> members =
        detail::membersByLabel(labels, static_cast<int>(kernel.size()), clusterCount);
    SplitBuffers buffers;
    for (const Vec<int>& cluster : members) {
      if (cluster.size() <= 1) continue;
      const int seed = splitSeed(kernel, cluster, buffers);
      if (seed >= 0) split(kernel, cluster, seed, buffers, labels);
    }
  });
}
