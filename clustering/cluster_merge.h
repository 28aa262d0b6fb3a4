// Cluster merging: average-linkage joins of the clusters of a label vector.
#ifndef XVKFC_CLUSTERING_CLUSTER_MERGE_H_
#define XVKFC_CLUSTERING_CLUSTER_MERGE_H_

#include <vector>

#include "numeric/mat.h"
#include "numeric/vec.h"
#include "platform/export.h"

// One merging pass over every pair (a, b), a < b, of the clusters 0 .. the
// largest label, judged on `kernel` (face x face similarities). A pair is
// joined when its average linkage is at least 0.69 and, if either cluster has
// two faces or fewer, its best single similarity is at least 0.74. Member
// lists are taken once at the start of the pass and not updated as clusters
// join; a join relabels only the two lists, to the smaller of their current
// labels. After any join the non-negative labels are renumbered 0 .. k-1 in
// the order of the old ids; negative labels (unclustered faces) stay.
//
// kernel: n x n, taken by value. labels: at least n entries, rewritten in
// place. Returns the number of joins made, counting a join of two lists that
// already share a label; 0 when all labels are negative, and 0 (labels
// untouched, "malloc fail!!!(alloc members in MergeCluster(mat, ivec)" or
// "malloc fail!!!(add members in MergeCluster(mat, ivec)" logged) when
// building the member lists runs out of memory. Other allocation failures
// throw std::bad_alloc.
// REQUIRES: labels not empty; every label < n.
XVKFC_EXPORT int MergeCluster(Mat<float> kernel, Vec<int>& labels);

namespace detail {

// MergeCluster on a kernel read in place: the engine's merge passes use this,
// so a pass costs no copy of the n x n kernel. Same result, log lines and
// REQUIRES as MergeCluster.
int mergePass(const std::vector<Vec<float>>& kernel, Vec<int>& labels);

}  // namespace detail

#endif  // XVKFC_CLUSTERING_CLUSTER_MERGE_H_
