#include "reference/reference_clustering.h"

#include <cstddef>

#include "clustering/member_lists.h"
#include "clustering/thresholds.h"
#include "numeric/kmeans.h"
#include "platform/alloc_guard.h"

namespace reference {
namespace {

// --- Merging ------------------------------------------------------------------

bool shouldJoin(const Mat<float>& kernel, const Vec<int>& a, const Vec<int>& b) {
  float pairMax = 0.0f;
  float pairSum = 0.0f;
  for (int face : a) {
    float rowMax = 0.0f;
    float rowSum = 0.0f;
    for (float similarity : kernel[face].subVec(b)) {
      if (similarity > rowMax) rowMax = similarity;
      rowSum += similarity;
    }
    if (rowMax > pairMax) pairMax = rowMax;
    pairSum += rowSum / static_cast<float>(b.size());
  }
  const float average = pairSum / static_cast<float>(a.size());
  if (!(average >= detail::kMergeSimilarity)) return false;
  if (a.size() <= 2 || b.size() <= 2) return pairMax >= detail::kMergeBestPairSimilarity;
  return true;
}

void join(const Vec<int>& a, const Vec<int>& b, Vec<int>& labels) {
  const int labelA = labels[a[0]];
  const int labelB = labels[b[0]];
  if (labelA < labelB) {
    for (int face : b) labels[face] = labelA;
  } else {
    for (int face : a) labels[face] = labelB;
  }
}

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

void renumberDroppingSingletons(bool dropSingletons, Vec<int>& labels) {
  const Vec<int> old = labels;
  const int largest = detail::largestLabel(old);
  int nextId = 0;
  for (int l = 0; l <= largest; ++l) {
    int count = 0;
    for (int label : old) count += label == l ? 1 : 0;
    for (std::size_t i = 0; i < old.size(); ++i) {
      if (old[i] == l) labels[i] = (count == 1 && dropSingletons) ? -1 : nextId;
    }
    if (count >= 2) ++nextId;
  }
}

// --- Splitting ----------------------------------------------------------------

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

// --- Pruning ------------------------------------------------------------------

void zeroRowAndColumn(Kernel& working, int face) {
  for (std::size_t j = 0; j < working.size(); ++j) {
    working[face][j] = 0.0f;
    working[j][face] = 0.0f;
  }
}

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

int mergeCluster(Mat<float> kernel, Vec<int>& labels) {
  const int clusterCount = detail::largestLabel(labels) + 1;
  if (clusterCount < 1) return 0;
  std::vector<Vec<int>> members;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(alloc members in MergeCluster(mat, ivec)",
                                    [&] { members.resize(clusterCount + 1); })) {
    return 0;
  }
  if (!detail::runOrLogAllocFailure("malloc fail!!!(add members in MergeCluster(mat, ivec)", [&] {
        for (int i = 0; i < kernel.rowCount(); ++i) {
          members[labels[i] < 0 ? clusterCount : labels[i]].push_back(i);
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

void mergeClusters(const Kernel& kernel, Vec<int>& labels, bool dropSingletons) {
  if (detail::largestLabel(labels) < 0) return;
  while (mergeCluster(Mat<float>(kernel), labels) > 0) {
  }
  renumberDroppingSingletons(dropSingletons, labels);
}

void clusterSplit(const Kernel& kernel, Vec<int>& labels) {
  detail::runOrLogAllocFailure("malloc fail!!!(in ClusterSplit", [&] {
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

void refineClustering(const Kernel& kernel, Vec<int>& labels, float threshold, bool splitAndMerge,
                      std::map<int, std::vector<int>>& clusters) {
  if (splitAndMerge) {
    for (int cycle = 0; cycle < detail::kRefineCycles; ++cycle) {
      clusterSplit(kernel, labels);
      mergeClusters(kernel, labels, true);
    }
  }
  if (!detail::runOrLogAllocFailure("malloc fail!!!(add members vector in refineClustering",
                                    [&] { pruneOutliers(kernel, threshold, labels); })) {
    return;
  }
  std::map<int, std::vector<int>> rebuilt;
  for (std::size_t i = 0; i < kernel.size(); ++i) {
    if (labels[i] != -2) rebuilt[labels[i]].push_back(static_cast<int>(i));
  }
  clusters = rebuilt;
}

}  // namespace reference
