#include "tools/quality.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tool {
namespace {

TEST(QualityTest, HandCheckedPartition) {
  // Faces 1..5 of identities A A A B B, clustered as {1,2} {3,4} {5}.
  const Quality q = measureQuality({0, 0, 1, 1, 2}, {7, 7, 7, 8, 8});
  // Pairs put together: (1,2), (3,4); of those the same person: (1,2).
  // Pairs of the same person: (1,2), (1,3), (2,3), (4,5).
  EXPECT_DOUBLE_EQ(q.pairwise.precision, 1.0 / 2.0);
  EXPECT_DOUBLE_EQ(q.pairwise.recall, 1.0 / 4.0);
  EXPECT_DOUBLE_EQ(q.pairwise.f, 1.0 / 3.0);
  // BCubed per face, precision 1, 1, 1/2, 1/2, 1 and recall 2/3, 2/3, 1/3, 1/2, 1/2.
  EXPECT_DOUBLE_EQ(q.bcubed.precision, 4.0 / 5.0);
  EXPECT_DOUBLE_EQ(q.bcubed.recall, 8.0 / 15.0);
  EXPECT_DOUBLE_EQ(q.bcubed.f, 0.64);
  EXPECT_EQ(q.faces, 5);
}

TEST(QualityTest, DegeneratePartitionsCountARatioOverNoPairsAsOne) {
  const struct {
    std::vector<int> predicted, truth;
    std::vector<double> expected;  // pairwise P, R, BCubed P, R
  } cases[] = {
      {{-2, -3, -4}, {0, 1, 2}, {1.0, 1.0, 1.0, 1.0}},          // strangers kept apart
      {{0, 0, 0, 0}, {0, 1, 2, 3}, {0.0, 1.0, 0.25, 1.0}},      // strangers lumped together
      {{-2, -3, -4, -5}, {6, 6, 6, 6}, {1.0, 0.0, 1.0, 0.25}},  // one person split up
  };
  for (const auto& c : cases) {
    const Quality q = measureQuality(c.predicted, c.truth);
    EXPECT_EQ((std::vector<double>{q.pairwise.precision, q.pairwise.recall, q.bcubed.precision,
                                   q.bcubed.recall}),
              c.expected);
  }
}

TEST(QualityTest, UnclusteredAndMissingFacesAreSingletons) {
  // Face 12 is in two clusters, as the library may list it.
  const std::vector<int> labels =
      clusterOfFaces({{-1, {30, 31}, -1, {}}, {0, {10, 11, 12}, 10, {}}, {1, {12, 13}, 12, {}}},
                     {10, 12, 13, 30, 31, 99});
  // 12 goes with the first cluster that lists it.
  EXPECT_EQ(std::vector<int>(labels.begin(), labels.begin() + 3), (std::vector<int>{0, 0, 1}));
  // 30, 31 (unclustered) and 99 (in no cluster) each stand alone.
  const std::set<int> singletons(labels.begin() + 3, labels.end());
  EXPECT_EQ(singletons.size(), 3u);
  EXPECT_LT(*singletons.rbegin(), -1);
}

}  // namespace
}  // namespace tool
