// Label-vector helpers shared by cluster splitting, merging and refinement.
#ifndef XVKFC_CLUSTERING_MEMBER_LISTS_H_
#define XVKFC_CLUSTERING_MEMBER_LISTS_H_

#include <cstddef>
#include <vector>

#include "numeric/vec.h"

namespace detail {

// The largest label, or -1 for an empty label vector (no cluster either way).
inline int largestLabel(const Vec<int>& labels) {
  int largest = -1;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (i == 0 || labels[i] > largest) largest = labels[i];
  }
  return largest;
}

// The faces 0 .. faceCount-1 grouped by label: list l holds, in ascending
// order, the faces labelled l. Faces with a negative label are in no list.
// Throws std::bad_alloc when memory runs out.
// REQUIRES: labels.size() >= faceCount; every label < clusterCount.
inline std::vector<Vec<int>> membersByLabel(const Vec<int>& labels, int faceCount,
                                            int clusterCount) {
  std::vector<Vec<int>> members(clusterCount);
  for (int i = 0; i < faceCount; ++i) {
    if (labels[i] >= 0) members[labels[i]].push_back(i);
  }
  return members;
}

}  // namespace detail

#endif  // XVKFC_CLUSTERING_MEMBER_LISTS_H_
