#include "tools/quality.h"

#include <gtest/gtest.h>

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

TEST(QualityTest, DegeneratePartitions) {
  // Every face alone and every face a different person: nothing to find, nothing wrong.
  const Quality alone = measureQuality({-2, -3, -4}, {0, 1, 2});
  EXPECT_EQ(alone.pairwise.precision, 1.0);
  EXPECT_EQ(alone.pairwise.recall, 1.0);
  EXPECT_EQ(alone.bcubed.f, 1.0);
  // Strangers all in one cluster: every claimed pair is wrong.
  const Quality lumped = measureQuality({0, 0, 0, 0}, {0, 1, 2, 3});
  EXPECT_EQ(lumped.pairwise.precision, 0.0);
  EXPECT_EQ(lumped.pairwise.f, 0.0);
  EXPECT_EQ(lumped.bcubed.precision, 0.25);
  EXPECT_EQ(lumped.bcubed.recall, 1.0);
  // One person split into singletons.
  const Quality split = measureQuality({-2, -3, -4, -5}, {6, 6, 6, 6});
  EXPECT_EQ(split.pairwise.recall, 0.0);
  EXPECT_EQ(split.bcubed.recall, 0.25);
}

TEST(QualityTest, UnclusteredAndMissingFacesAreSingletons) {
  ClusterRecord bucket, first, second;
  bucket.id = -1;
  bucket.faceIds = {30, 31};
  first.id = 0;
  first.faceIds = {10, 11, 12};
  second.id = 1;
  second.faceIds = {12, 13};  // the library may list a face in two clusters
  const std::vector<int> labels = clusterOfFaces({bucket, first, second}, {10, 12, 13, 30, 31, 99});
  EXPECT_EQ(labels[0], 0);
  EXPECT_EQ(labels[1], 0);  // the first cluster that lists it
  EXPECT_EQ(labels[2], 1);
  // 30, 31 (unclustered) and 99 (in no cluster) each stand alone.
  EXPECT_LT(labels[3], -1);
  EXPECT_LT(labels[4], -1);
  EXPECT_LT(labels[5], -1);
  EXPECT_NE(labels[3], labels[4]);
  EXPECT_NE(labels[4], labels[5]);
}

}  // namespace
}  // namespace tool
