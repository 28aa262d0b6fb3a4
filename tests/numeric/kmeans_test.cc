#include "numeric/kmeans.h"

#include <gtest/gtest.h>

#include "support/alloc_failure.h"

namespace {

// One-dimensional points; small integers keep every mean exact.
Mat<float> points(std::initializer_list<float> values) {
  Mat<float> m;
  for (float v : values) m.rows.push_back({v});
  return m;
}

TEST(KMeans, PartitionSeedingTiesAndTheSharedListQuirk) {
  Mat<float> twin = points({3, 3}), data = points({0, 10});
  Vec<int> init = {0, 1}, labels, shared = {0, 1};
  kmeans(twin, 2, init, labels);
  EXPECT_EQ(labels, Vec<int>({0, 0}));  // ties go to the lowest centre
  // One list as seed and output is zeroed first: centre 0 starts at the mean
  // 5, centre 1 stays at zero and wins the point 0.
  kmeans(data, 2, shared, shared);
  EXPECT_EQ(shared, Vec<int>({1, 0}));
}

// Each pass allocates once (the count array of computeMeans), so the
// allocations of kmeansCore count its passes.
TEST(KMeans, StopsOnAStableCostButRunsAllPassesWhenTheCostIsZero) {
  Mat<float> data = points({0, 2, 10}), means = points({0, 10});
  Vec<int> labels(3);
  EXPECT_EQ(alloc_failure::countAllocations([&] { kmeansCore(data, means, labels); }), 3);
  EXPECT_EQ(labels, Vec<int>({0, 0, 1}));
  EXPECT_EQ(means.rows, points({1, 10}).rows);
  // Every point on its centre: the relative change is 0 / 0 and never passes.
  Mat<float> onCentres = points({0, 10}), centres = points({0, 10});
  Vec<int> two(2);
  EXPECT_EQ(alloc_failure::countAllocations([&] { kmeansCore(onCentres, centres, two); }), 102);
}

}  // namespace
