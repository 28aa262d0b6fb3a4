// Splitting loose clusters and merging close ones.
#include "clustering/cluster_merge.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/ready_handle.h"
#include "clustering/face_clustering_system.h"

namespace {

using testing_support::pairKernel;

TEST(ClusterSplit, CutsLooseClustersUnderTheNextIdAboveAllInUse) {
  // Faces 0..5: pairs at 0.85, exactly 0.9 and just below 0.9; a cut pair's
  // first face seeds the second group. Faces 6..8 at 0.5 everywhere: the
  // mean test fires, both 2-means centres start equal, ties go to group 0 and
  // nothing moves. Faces 9..11: mean 0.8, but face 10 is at 0.6 to face 11
  // and seeds (seeding with face 9 would cut 9 off). Face 12 is unclustered,
  // face 13 alone. Faces 14..17 at 0.69 everywhere but face 14's own 0.95:
  // every test lands exactly on 0.69, which is not below it, so they stay.
  FaceClusteringSystem engine;
  engine.kernel = pairKernel(18, 0.1f,
                             {{0, 1, 0.85f}, {2, 3, 0.9f}, {4, 5, std::nextafter(0.9f, 0.0f)},
                              {9, 10, 0.9f}, {9, 11, 0.9f}, {10, 11, 0.6f}});
  for (int i = 6; i < 9; ++i) engine.kernel[i] = Vec<float>(18, 0.5f);
  for (int i = 14; i < 18; ++i) {
    for (int j = 14; j < 18; ++j) engine.kernel[i][j] = i == 14 && j == 14 ? 0.95f : 0.69f;
  }
  Vec<int> labels = {0, 0, 1, 1, 2, 2, 3, 3, 3, 4, 4, 4, -1, 6, 5, 5, 5, 5};
  engine.ClusterSplit(labels);
  EXPECT_EQ(labels, Vec<int>({7, 0, 1, 1, 8, 2, 3, 3, 3, 4, 9, 4, -1, 6, 5, 5, 5, 5}));
}

// One pass over clusters 0 (faces 0..sizeA-1) and 1 (the next sizeB), 0.95
// inside each, `across` between them except one pair at `best`.
int mergeTwo(int sizeA, int sizeB, float across, float best) {
  const int n = sizeA + sizeB;
  Mat<float> k(pairKernel(n, across, {{0, sizeA, best}}));
  Vec<int> labels(n);
  for (int i = 0; i < n; ++i) {
    labels[i] = i < sizeA ? 0 : 1;
    for (int j = 0; j < n; ++j) k[i][j] = i != j && labels[i] == (j >= sizeA) ? 0.95f : k[i][j];
  }
  return MergeCluster(k, labels);
}

TEST(MergeCluster, AverageLinkageWithABestPairTestForSmallClusters) {
  EXPECT_EQ(mergeTwo(4, 4, 0.69f, 0.69f), 1);  // from 3 faces on, no best-pair test
  EXPECT_EQ(mergeTwo(4, 4, std::nextafter(0.69f, 0.0f), 0.69f), 0);
  EXPECT_EQ(mergeTwo(3, 3, 0.6f, 0.9f), 0);
  EXPECT_EQ(mergeTwo(2, 3, 0.72f, 0.72f), 0);
  EXPECT_EQ(mergeTwo(2, 3, 0.72f, 0.74f), 1);
  EXPECT_EQ(mergeTwo(1, 1, 0.74f, std::nextafter(0.74f, 0.0f)), 0);
}

TEST(MergeCluster, OnePassJoinsOnStaleListsAndRenumbersOnlyAfterAJoin) {
  // (0, 3), (1, 2), (2, 3) pass in that order: 0, 2 and 3 end together and 1
  // keeps its label; the last join counts although both lists then carry 0.
  Vec<int> chained = {0, 1, 2, 3}, noJoin = {0, 0, 2, 2, 5}, join = {1, 1, 4, 4, 6, 6, -1};
  Mat<float> chain(pairKernel(4, 0.1f, {{0, 3, 0.8f}, {1, 2, 0.8f}, {2, 3, 0.8f}}));
  EXPECT_EQ(MergeCluster(chain, chained), 3);
  EXPECT_EQ(chained, Vec<int>({0, 1, 0, 0}));
  EXPECT_EQ(MergeCluster(Mat<float>(pairKernel(5, 0.1f)), noJoin), 0);
  EXPECT_EQ(noJoin, Vec<int>({0, 0, 2, 2, 5}));
  Mat<float> two(pairKernel(7, 0.1f, {{2, 4, 0.8f}, {2, 5, 0.8f}, {3, 4, 0.8f}, {3, 5, 0.8f}}));
  EXPECT_EQ(MergeCluster(two, join), 1);
  EXPECT_EQ(join, Vec<int>({0, 0, 1, 1, 1, 1, -1}));
}

Vec<int> mergeAll(std::vector<Vec<float>> kernel, Vec<int> labels, bool dropSingletons) {
  FaceClusteringSystem engine;
  engine.kernel = kernel;
  engine.MergeClusters(labels, dropSingletons);
  return labels;
}

TEST(MergeClusters, RepeatsPassesThenRenumbersWithTheSharedIdOfKeptSingletons) {
  EXPECT_EQ(mergeAll(pairKernel(5, 0.1f), {0, 0, 2, 2, 5}, false), Vec<int>({0, 0, 1, 1, 2}));
  EXPECT_EQ(mergeAll(pairKernel(5, 0.1f), {0, 0, 2, 2, 5}, true), Vec<int>({0, 0, 1, 1, -1}));
  EXPECT_EQ(mergeAll(pairKernel(3, 0.1f), {0, 1, 1}, false), Vec<int>({0, 0, 0}));
  // Pass 1 chains 0, 2 and 3; pass 2 joins face 1 at (0.6 + 0.8 + 0.68) / 3.
  const auto k =
      pairKernel(4, 0.1f, {{0, 1, 0.6f}, {0, 3, 0.8f}, {1, 2, 0.8f}, {1, 3, 0.68f}, {2, 3, 0.8f}});
  EXPECT_EQ(mergeAll(k, {0, 1, 2, 3}, true), Vec<int>({0, 0, 0, 0}));
}

}  // namespace
