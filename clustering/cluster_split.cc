// FaceClusteringSystem::ClusterSplit: a 2-means cut of every cluster that is
// not tight enough.
#include <cstddef>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "numeric/kmeans.h"
#include "platform/alloc_guard.h"

namespace {

using Kernel = std::vector<Vec<float>>;

// Mean similarity over the ordered pairs of distinct faces of `members`:
// per face, its row sum over the cluster less its own entry, over m - 1.
float tightness(const Kernel& kernel, const Vec<int>& members) {
  const int m = static_cast<int>(members.size());
  float score = 0.0f;
  for (int face : members) {
    float sum = 0.0f;
    for (float similarity : kernel[face].subVec(members)) sum += similarity;
    score += (sum - kernel[face][face]) * (1.0f / static_cast<float>(m - 1));
  }
  return score / static_cast<float>(m);
}

float rowMinimum(const Kernel& kernel, int face, const Vec<int>& members) {
  const Vec<float> row = kernel[face].subVec(members);
  float minimum = row[0];
  for (float similarity : row) {
    if (similarity < minimum) minimum = similarity;
  }
  return minimum;
}

// The position in `members` of the face that seeds the second group, or -1
// when the cluster is kept. The three tests are tried in this order.
int splitSeed(const Kernel& kernel, const Vec<int>& members) {
  if (tightness(kernel, members) < detail::kSplitSimilarity) return 0;
  if (members.size() == 2 && kernel[members[0]][members[1]] < detail::kSplitPairSimilarity) {
    return 0;
  }
  for (std::size_t u = 0; u < members.size(); ++u) {
    if (rowMinimum(kernel, members[u], members) < detail::kSplitSimilarity) {
      return static_cast<int>(u);
    }
  }
  return -1;
}

// 2-means on the cluster's own kernel block; the faces that end in group 1
// get the next id above every id in use.
void split(const Kernel& kernel, const Vec<int>& members, int seed, Vec<int>& labels) {
  const int m = static_cast<int>(members.size());
  Mat<float> block;
  for (int face : members) block.rows.push_back(kernel[face].subVec(members));
  Vec<int> seedGroups(m);
  seedGroups[seed] = 1;
  Vec<int> groups(m);
  kmeans(block, 2, seedGroups, groups);
  const int newId = detail::largestLabel(labels) + 1;
  for (int u = 0; u < m; ++u) {
    if (groups[u] == 1) labels[members[u]] = newId;
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
    for (const Vec<int>& cluster : members) {
      if (cluster.size() <= 1) continue;
      const int seed = splitSeed(kernel, cluster);
      if (seed >= 0) split(kernel, cluster, seed, labels);
    }
  });
}
