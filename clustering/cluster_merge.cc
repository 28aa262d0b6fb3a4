#include "clustering/cluster_merge.h"

#include <cstddef>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/kernel_block.h"
#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "platform/alloc_guard.h"

namespace {

// Whether clusters `a` and `b` are alike enough to join: average linkage
// (the mean of the row means) first, then, for small clusters, the best
// single similarity. NaN figures fail both tests. Reads the kernel in place.
bool shouldJoin(const detail::Kernel& kernel, const Vec<int>& a, const Vec<int>& b) {
  float pairMax = 0.0f;
  float pairSum = 0.0f;
  const float bCount = static_cast<float>(b.size());
  detail::rowSumsAndMaxima(kernel, a, b, [&](std::size_t, float rowSum, float rowMax) {
    if (rowMax > pairMax) pairMax = rowMax;
    pairSum += rowSum / bCount;
  });
  const float average = pairSum / static_cast<float>(a.size());
  if (!(average >= detail::kMergeSimilarity)) return false;
  if (a.size() <= 2 || b.size() <= 2) return pairMax >= detail::kMergeBestPairSimilarity;
  return true;
}

// Relabels the faces of the two lists only, to the smaller of the labels
// their first faces carry now. Other faces carrying either label keep it;
// the next pass repairs that.
void join(const Vec<int>& a, const Vec<int>& b, Vec<int>& labels) {
  const int labelA = labels[a[0]];
  const int labelB = labels[b[0]];
  if (labelA < labelB) {
    for (int face : b) labels[face] = labelA;
  } else {
    for (int face : a) labels[face] = labelB;
  }
}

// Ids in use among 0 .. idCount-1 become 0, 1, ... in ascending order.
void renumberDensely(int idCount, Vec<int>& labels) {
  Vec<int> newId(idCount);
  for (int label : labels) {
    if (label >= 0) newId[label] = 1;
  }
  int next = 0;
  for (int& entry : newId) {
    if (entry == 1) entry = next++;
  }
  for (int& label : labels) {
    if (label >= 0) label = newId[label];
  }
}

// Dense ids for the clusters of two faces or more, in the order of the old
// ids. The id counter advances only past such clusters, so with singletons
// kept a single face shares its id with the next larger cluster; with
// dropSingletons it becomes unclustered (-1). Counts every id in one scan
// instead of one scan per id.
void renumberDroppingSingletons(bool dropSingletons, Vec<int>& labels) {
  const int largest = detail::largestLabel(labels);
  if (largest < 0) return;
  std::vector<int> newId(static_cast<std::size_t>(largest) + 1, 0);
  for (int label : labels) {
    if (label >= 0) ++newId[label];
  }
  int nextId = 0;
  for (int& entry : newId) {
    const int count = entry;
    entry = (count == 1 && dropSingletons) ? -1 : nextId;
    if (count >= 2) ++nextId;
  }
  for (int& label : labels) {
    if (label >= 0) label = newId[label];
  }
}

}  // namespace

int MergeCluster(Mat<float> kernel, Vec<int>& labels) {
  return detail::mergePass(kernel.rows, labels);
}

namespace detail {

int mergePass(const Kernel& kernel, Vec<int>& labels) {
  const int clusterCount = largestLabel(labels) + 1;
  if (clusterCount < 1) return 0;

  // One list per id, plus one for the unclustered faces (built, never read).
  std::vector<Vec<int>> members;
  if (!runOrLogAllocFailure("malloc fail!!!(alloc members in MergeCluster(mat, ivec)",
                            [&] { members.resize(clusterCount + 1); })) {
    return 0;
  }
  if (!runOrLogAllocFailure("malloc fail!!!(add members in MergeCluster(mat, ivec)", [&] {
        for (std::size_t i = 0; i < kernel.size(); ++i) {
          members[labels[i] < 0 ? clusterCount : labels[i]].push_back(static_cast<int>(i));
        }
      })) {
    return 0;
  }

  int joined = 0;
  for (int a = 0; a < clusterCount; ++a) {
    if (members[a].empty()) continue;
    for (int b = a + 1; b < clusterCount; ++b) {
      if (members[b].empty() || !shouldJoin(kernel, members[a], members[b])) continue;
      join(members[a], members[b], labels);
      ++joined;
    }
  }
  if (joined > 0) renumberDensely(clusterCount, labels);
  return joined;
}

}  // namespace detail

void FaceClusteringSystem::MergeClusters(Vec<int>& labels, bool dropSingletons) {
  if (detail::largestLabel(labels) < 0) return;
  // Every pass reads the unchanged kernel in place.
  while (detail::mergePass(kernel, labels) > 0) {
  }
  renumberDroppingSingletons(dropSingletons, labels);
}
