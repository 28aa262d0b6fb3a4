#include "evaluation/quality.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace evaluation {
namespace {

TEST(QualityTest, HandCheckedPartitionsWithARatioOverNoPairsCountedAsOne) {
  const struct {
    std::vector<int> predicted, truth;
    double expected[6];  // pairwise P, R, F, BCubed P, R, F
  } cases[] = {
      // Faces 1..5 of identities A A A B B, clustered as {1,2} {3,4} {5}. Pairs
      // put together: (1,2), (3,4), of which (1,2) is right; pairs of the same
      // person: (1,2), (1,3), (2,3), (4,5). BCubed per face: precision 1, 1,
      // 1/2, 1/2, 1 and recall 2/3, 2/3, 1/3, 1/2, 1/2.
      {{0, 0, 1, 1, 2}, {7, 7, 7, 8, 8}, {1.0 / 2, 1.0 / 4, 1.0 / 3, 4.0 / 5, 8.0 / 15, 0.64}},
      {{-2, -3, -4}, {0, 1, 2}, {1, 1, 1, 1, 1, 1}},              // strangers kept apart
      {{0, 0, 0, 0}, {0, 1, 2, 3}, {0, 1, 0, 0.25, 1, 0.4}},      // strangers lumped together
      {{-2, -3, -4, -5}, {6, 6, 6, 6}, {1, 0, 0, 1, 0.25, 0.4}},  // one person split up
  };
  for (const auto& c : cases) {
    const Quality q = measureQuality(c.predicted, c.truth);
    const double measured[6] = {q.pairwise.precision, q.pairwise.recall, q.pairwise.f,
                                q.bcubed.precision,   q.bcubed.recall,   q.bcubed.f};
    for (int k = 0; k < 6; ++k) EXPECT_DOUBLE_EQ(measured[k], c.expected[k]) << k;
  }
}

TEST(QualityTest, UnclusteredAndMissingFacesAreSingletons) {
  // Face 12 is in two clusters, as the library may list it.
  int bucket[] = {30, 31}, first[] = {10, 11, 12}, second[] = {12, 13};
  itf_xvk_clusteritem items[] = {{-1, 2, bucket, 0, nullptr, -1},
                                 {0, 3, first, 0, nullptr, 10},
                                 {1, 2, second, 0, nullptr, 12}};
  const std::vector<int> labels = clusterOfFaces({3, items}, {10, 12, 13, 30, 31, 99});
  // 12 goes with the first cluster that lists it.
  EXPECT_EQ(std::vector<int>(labels.begin(), labels.begin() + 3), (std::vector<int>{0, 0, 1}));
  // 30, 31 (unclustered) and 99 (in no cluster) each stand alone.
  const std::set<int> singletons(labels.begin() + 3, labels.end());
  EXPECT_EQ(singletons.size(), 3u);
  EXPECT_LT(*singletons.rbegin(), -1);
}

}  // namespace
}  // namespace evaluation
