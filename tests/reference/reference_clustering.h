// The engine's merging, splitting and pruning as they were first written:
// plain loops, a fresh kernel copy per merge pass and per pruned cluster,
// gathers through subVec. The engine's faster renderings must give the same
// labels, clusters and log lines; these stay as simple as possible.
#ifndef XVKFC_TESTS_REFERENCE_REFERENCE_CLUSTERING_H_
#define XVKFC_TESTS_REFERENCE_REFERENCE_CLUSTERING_H_

#include <map>
#include <vector>

#include "numeric/mat.h"
#include "numeric/vec.h"

namespace reference {

using Kernel = std::vector<Vec<float>>;

// One merging pass (the exported MergeCluster).
int mergeCluster(Mat<float> kernel, Vec<int>& labels);
// FaceClusteringSystem::MergeClusters on `kernel`.
void mergeClusters(const Kernel& kernel, Vec<int>& labels, bool dropSingletons);
// FaceClusteringSystem::ClusterSplit on `kernel`.
void clusterSplit(const Kernel& kernel, Vec<int>& labels);

// FaceClusteringSystem::refineClustering on `kernel`: the final labels, and
// in `clusters` the rebuilt cluster map as id -> face indices (left alone
// when pruning runs out of memory).
void refineClustering(const Kernel& kernel, Vec<int>& labels, float threshold, bool splitAndMerge,
                      std::map<int, std::vector<int>>& clusters);

}  // namespace reference

#endif  // XVKFC_TESTS_REFERENCE_REFERENCE_CLUSTERING_H_
