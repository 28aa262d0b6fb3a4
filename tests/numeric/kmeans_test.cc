#include "numeric/kmeans.h"

#include <gtest/gtest.h>

#include "support/alloc_failure.h"

namespace {

// One-dimensional points, small integers so that every mean is exact.
Mat<float> points(std::initializer_list<float> values) {
  Mat<float> m;
  for (float v : values) m.rows.push_back({v});
  return m;
}

TEST(KMeans, TiesGoToTheLowestCentre) {
  Mat<float> data = points({3, 3});
  Vec<int> init = {0, 1}, labels;
  kmeans(data, 2, init, labels);
  EXPECT_EQ(labels, Vec<int>({0, 0}));
}

TEST(KMeans, OneListAsSeedAndOutputSeedsEveryCentreFromLabelZero) {
  Mat<float> data = points({0, 10});
  Vec<int> separate = {0, 1}, labels;
  kmeans(data, 2, separate, labels);
  EXPECT_EQ(labels, Vec<int>({0, 1}));
  // Centre 0 starts at the mean 5 and centre 1 at the empty cluster's zero,
  // which wins the point 0.
  Vec<int> shared = {0, 1};
  kmeans(data, 2, shared, shared);
  EXPECT_EQ(shared, Vec<int>({1, 0}));
}

TEST(KMeans, ComputeMeansRunsOverTheLabelListAndZeroesEmptyCentres) {
  Mat<float> data = points({2, 4, 100});
  Mat<float> means(3, 1);
  for (Vec<float>& row : means.rows) row[0] = 7;
  Vec<int> labels = {0, 0};  // shorter than the data: row 2 is not read
  computeMeans(data, means, labels);
  EXPECT_EQ(means[0][0], 3.0f);
  EXPECT_EQ(means[1][0], 0.0f);
  EXPECT_EQ(means[2][0], 0.0f);
}

// computeMeans allocates its count array once per pass and nothing else in
// the loop allocates, so the allocations of kmeansCore count its passes.
TEST(KMeans, StopsOnAStableCostButRunsAllPassesWhenTheCostIsZero) {
  Mat<float> data = points({0, 2, 10});
  Mat<float> means = points({0, 10});
  Vec<int> labels(3);
  EXPECT_EQ(alloc_failure::countAllocations([&] { kmeansCore(data, means, labels); }), 3);
  EXPECT_EQ(labels, Vec<int>({0, 0, 1}));
  EXPECT_EQ(means[0][0], 1.0f);

  // Every point on its centre: the relative change is 0 / 0 and never passes.
  Mat<float> exact = points({0, 10});
  Mat<float> onPoints = points({0, 10});
  Vec<int> exactLabels(2);
  EXPECT_EQ(alloc_failure::countAllocations([&] { kmeansCore(exact, onPoints, exactLabels); }),
            102);
  EXPECT_EQ(exactLabels, Vec<int>({0, 1}));
}

TEST(KMeans, RandomSeedingSeparatesTwoGroups) {
  Mat<float> data = points({0, 100, 1, 101});
  Vec<int> labels = {9};
  kmeans(data, 2, labels);
  ASSERT_EQ(labels.size(), 4u);
  EXPECT_EQ(labels[0], labels[2]);
  EXPECT_EQ(labels[1], labels[3]);
  EXPECT_NE(labels[0], labels[1]);

  // More centres than points: left unchanged rather than reading past the
  // permutation.
  kmeans(data, 5, labels);
  EXPECT_EQ(labels.size(), 4u);
}

}  // namespace
