#include "clustering/engine_fixture.h"

namespace {

using Ids = std::vector<int>;

// Application cluster features use tags from 50 up; unscripted pairs have
// similarity 0.5, below every threshold.
using MergeExisting = EngineTest;

TEST_F(MergeExisting, OutliersJoinEveryClusterAtPointNineOrMoreAndTheLengthTestDropsTheRest) {
  Load({0, 1, 2});
  RunCluster(-1, {0, 1, 2});
  Similar(0, 50, 0.95f);
  Similar(0, 51, 0.91f);
  Similar(1, 50, 0.9f);
  Similar(2, 51, 0.89f);
  // The second cluster 7 replaces the first.
  engine.mergeInitialCluster(
      {App(3, {10}, 50), App(7, {99}, 51), App(7, {11}, 51), App(-1, {900})});
  EXPECT_EQ(Keys(), (Ids{-1, 0, 1}));
  EXPECT_EQ(Members(0), (Ids{10, 100, 101}));
  EXPECT_EQ(Members(1), (Ids{11, 100}));
  // Face 0 counts twice in `matched`, which is then as long as the outlier
  // list: face 2, which joined nothing, is left out altogether.
  EXPECT_EQ(Members(-1), Ids{900});
  EXPECT_EQ(engine.initialFaceCount, 4);  // the replaced cluster's face counts too
}

TEST_F(MergeExisting, ExactlyPointEightySevenUnitesUnderTheLowerKey) {
  Load({0, 1, 2, 3});
  RunCluster(0, {2, 3});  // representative: face 2
  RunCluster(1, {0, 1});  // representative: face 0
  Similar(2, 0, 0.87f);
  engine.mergeInitialCluster({App(-1, {})});
  EXPECT_EQ(Keys(), (Ids{-1, 0}));
  EXPECT_EQ(Members(0), (Ids{102, 103, 100, 101}));
  // A tie between the two features goes to the smaller one, loaded first.
  EXPECT_EQ(engine.clusters.at(0).feature, Feature(0));
  EXPECT_EQ(engine.clusters.at(0).repFaceId, 100);
  EXPECT_EQ(engine.clusterCount, 3);  // counted before uniting
}

TEST_F(MergeExisting, LinkingIsOneOrderedPassNotATransitiveUnion) {
  Load({0, 1, 2, 3});
  for (int key = 0; key < 4; ++key) RunCluster(key, {key});
  Similar(0, 2, 0.9f);  // 2 takes id 0
  Similar(1, 3, 0.9f);  // 3 takes id 1
  Similar(2, 3, 0.9f);  // 3 takes id 0; 1 keeps its own
  engine.mergeInitialCluster({App(-1, {})});
  EXPECT_EQ(Members(0), (Ids{100, 102, 103}));
  EXPECT_EQ(Members(1), Ids{101});
}

}  // namespace
