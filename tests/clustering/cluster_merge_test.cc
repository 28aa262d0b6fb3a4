#include "clustering/cluster_merge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

// n faces at `across` to each other, 1 on the diagonal; then `pairs` set.
Mat<float> kernelOf(int n, float across, std::vector<std::vector<float>> pairs = {}) {
  Mat<float> k(n, n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) k[i][j] = i == j ? 1.0f : across;
  }
  for (const auto& p : pairs) k[int(p[0])][int(p[1])] = k[int(p[1])][int(p[0])] = p[2];
  return k;
}

// Clusters 0 (faces 0..sizeA-1) and 1 (the next sizeB): `inside` within a
// cluster, `across` between them, and one cross pair raised to `best`.
Mat<float> twoClusters(int sizeA, int sizeB, float across, float best) {
  Mat<float> k = kernelOf(sizeA + sizeB, across, {{0, float(sizeA), best}});
  for (int i = 0; i < sizeA + sizeB; ++i) {
    for (int j = 0; j < sizeA + sizeB; ++j) {
      if (i != j && (i < sizeA) == (j < sizeA)) k[i][j] = 0.95f;
    }
  }
  return k;
}

int mergeTwo(int sizeA, int sizeB, float across, float best) {
  Vec<int> labels(sizeA + sizeB);
  for (int i = sizeA; i < sizeA + sizeB; ++i) labels[i] = 1;
  return MergeCluster(twoClusters(sizeA, sizeB, across, best), labels);
}

TEST(MergeCluster, AverageLinkageWithABestPairTestForSmallClusters) {
  EXPECT_EQ(mergeTwo(3, 3, 0.70f, 0.70f), 1);  // no best-pair test from 3 faces on
  EXPECT_EQ(mergeTwo(2, 3, 0.72f, 0.72f), 0);
  EXPECT_EQ(mergeTwo(2, 3, 0.72f, 0.74f), 1);
  EXPECT_EQ(mergeTwo(1, 1, 0.74f, 0.74f), 1);
  EXPECT_EQ(mergeTwo(1, 1, 0.74f, std::nextafter(0.74f, 0.0f)), 0);
  EXPECT_EQ(mergeTwo(3, 3, 0.6f, 0.9f), 0);
}

TEST(MergeCluster, JoinsWithinAPassUseTheListsOfItsStart) {
  // Pairs (0, 3), (1, 2), (2, 3) pass in that order: 0, 2 and 3 end
  // together, 1 keeps its own label until a later pass.
  Vec<int> chained = {0, 1, 2, 3};
  EXPECT_EQ(MergeCluster(kernelOf(4, 0.1f, {{0, 3, 0.8f}, {1, 2, 0.8f}, {2, 3, 0.8f}}), chained),
            3);
  EXPECT_EQ(chained, Vec<int>({0, 1, 0, 0}));
  // The third join finds both lists already labelled 0 and still counts.
  Vec<int> triangle = {0, 1, 2};
  EXPECT_EQ(MergeCluster(kernelOf(3, 0.8f), triangle), 3);
  EXPECT_EQ(triangle, Vec<int>({0, 0, 0}));
}

TEST(MergeCluster, RenumbersOnlyAfterAJoin) {
  Vec<int> noJoin = {0, 0, 2, 2, 5};
  EXPECT_EQ(MergeCluster(kernelOf(5, 0.1f), noJoin), 0);
  EXPECT_EQ(noJoin, Vec<int>({0, 0, 2, 2, 5}));
  Vec<int> join = {1, 1, 4, 4, 6, 6, -1};
  EXPECT_EQ(MergeCluster(
                kernelOf(7, 0.1f, {{2, 4, 0.8f}, {2, 5, 0.8f}, {3, 4, 0.8f}, {3, 5, 0.8f}}), join),
            1);
  EXPECT_EQ(join, Vec<int>({0, 0, 1, 1, 1, 1, -1}));
}

Vec<int> mergeAll(Mat<float> kernel, Vec<int> labels, bool dropSingletons) {
  FaceClusteringSystem engine;
  engine.kernel = kernel.rows;
  engine.MergeClusters(labels, dropSingletons);
  return labels;
}

TEST(MergeClusters, RenumbersWithTheSharedIdOfKeptSingletons) {
  EXPECT_EQ(mergeAll(kernelOf(5, 0.1f), {0, 0, 2, 2, 5}, false), Vec<int>({0, 0, 1, 1, 2}));
  EXPECT_EQ(mergeAll(kernelOf(5, 0.1f), {0, 0, 2, 2, 5}, true), Vec<int>({0, 0, 1, 1, -1}));
  EXPECT_EQ(mergeAll(kernelOf(3, 0.1f), {0, 1, 1}, false), Vec<int>({0, 0, 0}));
  EXPECT_EQ(mergeAll(kernelOf(3, 0.1f), {-1, -2, -1}, true), Vec<int>({-1, -2, -1}));
  // Passes repeat until one joins nothing: the first pass chains 0, 2 and
  // 3; the second joins face 1 at average (0.6 + 0.8 + 0.68) / 3 >= 0.69.
  const Mat<float> chain =
      kernelOf(4, 0.1f, {{0, 1, 0.6f}, {0, 3, 0.8f}, {1, 2, 0.8f}, {1, 3, 0.68f}, {2, 3, 0.8f}});
  EXPECT_EQ(mergeAll(chain, {0, 1, 2, 3}, true), Vec<int>({0, 0, 0, 0}));
}

TEST(MergeCluster, OutOfMemoryInTheMemberListsIsLoggedAndJoinsNothing) {
  const Mat<float> kernel = kernelOf(3, 0.8f);
  Mat<float> copy = kernel;
  Vec<int> labels = {0, 1, 2};
  const long allocations =
      alloc_failure::countAllocations([&] { MergeCluster(std::move(copy), labels); });
  std::vector<std::string> logged;
  for (long nth = 1; nth <= allocations; ++nth) {
    copy = kernel;
    labels = {0, 1, 2};
    testing_support::LogCapture log;
    alloc_failure::failNth(nth);
    try {
      EXPECT_EQ(MergeCluster(std::move(copy), labels), 0);
      ASSERT_EQ(log.messages().size(), 1u);
      logged.push_back(log.messages()[0]);
      EXPECT_EQ(labels, Vec<int>({0, 1, 2}));
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(log.messages().empty());
    }
  }
  ASSERT_GE(logged.size(), 2u);
  EXPECT_EQ(logged[0], "malloc fail!!!(alloc members in MergeCluster(mat, ivec)");
  EXPECT_EQ(logged[1], "malloc fail!!!(add members in MergeCluster(mat, ivec)");

  // In MergeClusters the failed pass ends the repetition; the renumbering
  // still runs.
  FaceClusteringSystem engine;
  engine.kernel = kernel.rows;
  const long copyAllocations =
      alloc_failure::countAllocations([&] { Mat<float> k(engine.kernel); });
  Vec<int> spread = {0, 2, 2};
  testing_support::LogCapture log;
  alloc_failure::failNth(copyAllocations + 1);
  engine.MergeClusters(spread, true);
  EXPECT_TRUE(log.contains("malloc fail!!!(alloc members in MergeCluster(mat, ivec)"));
  EXPECT_EQ(spread, Vec<int>({-1, 0, 0}));
}

}  // namespace
