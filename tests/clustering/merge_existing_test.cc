#include <new>
#include <set>
#include <string>

#include "clustering/engine_fixture.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

using testing_support::LogCapture;
using testing_support::scripted;
using Ids = std::vector<int>;

// Application cluster features use tags from 50 up; unscripted pairs have
// similarity 0.5, far below every threshold.
using MergeExisting = EngineTest;

TEST_F(MergeExisting, OutliersJoinEveryClusterAtPointNineOrMore) {
  Load({0, 1, 2, 3});
  RunCluster(-1, {0, 1, 2, 3});
  Similar(0, 50, 0.95f);
  Similar(0, 51, 0.91f);
  Similar(1, 50, 0.9f);
  Similar(2, 51, 0.89f);
  engine.mergeInitialCluster({App(3, {10}, 50), App(7, {11}, 51), App(-1, {900, 901})});
  EXPECT_EQ(Keys(), (Ids{-1, 0, 1}));
  EXPECT_EQ(Members(0), (Ids{10, 100, 101}));
  EXPECT_EQ(Members(1), (Ids{11, 100}));
  EXPECT_EQ(Members(-1), (Ids{900, 901, 102, 103}));
  EXPECT_EQ(engine.initialFaceCount, 4);
}

TEST_F(MergeExisting, OutlierIsDroppedWhenMultipleJoinsFillTheMatchedList) {
  Load({0, 1});
  RunCluster(-1, {0, 1});
  Similar(0, 50, 0.95f);
  Similar(0, 51, 0.95f);
  engine.mergeInitialCluster({App(3, {10}, 50), App(7, {11}, 51)});
  EXPECT_EQ(Keys(), (Ids{0, 1}));  // face 101 is in no cluster
  EXPECT_EQ(Members(0), (Ids{10, 100}));
  EXPECT_EQ(Members(1), (Ids{11, 100}));
}

TEST_F(MergeExisting, NewClustersFollowTheLargestIdAndALaterDuplicateWins) {
  Load({0, 1, 2});
  RunCluster(0, {0, 1});
  RunCluster(1, {2});
  engine.mergeInitialCluster({App(3, {1, 2}, 50), App(7, {4}, 51), App(3, {5}, 52)});
  EXPECT_EQ(Keys(), (Ids{0, 1, 2, 3}));
  EXPECT_EQ(Members(0), Ids{5});
  EXPECT_EQ(engine.clusters.at(0).feature, Feature(52));
  EXPECT_EQ(Members(1), Ids{4});
  EXPECT_EQ(Members(2), (Ids{100, 101}));
  EXPECT_EQ(Members(3), Ids{102});
  EXPECT_EQ(engine.initialFaceCount, 4);
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
  EXPECT_EQ(Keys(), (Ids{-1, 0, 1}));
  EXPECT_EQ(Members(0), (Ids{100, 102, 103}));
  EXPECT_EQ(Members(1), Ids{101});
}

TEST_F(MergeExisting, WithoutApplicationClustersNothingIsComparedOrRenumbered) {
  Load({0, 1, 2});
  engine.clusters.clear();
  engine.mergeInitialCluster({App(3, {10}, 50)});
  EXPECT_TRUE(engine.clusters.empty());  // an empty map takes nothing over
  EXPECT_EQ(engine.initialFaceCount, 0);

  RunCluster(-1, {2});
  RunCluster(4, {0, 1});
  scripted().comparisons.clear();
  engine.mergeInitialCluster({});
  EXPECT_EQ(Keys(), (Ids{-1, 4}));
  EXPECT_EQ(Members(-1), Ids{102});
  EXPECT_EQ(Members(4), (Ids{100, 101}));
  EXPECT_TRUE(scripted().comparisons.empty());
  EXPECT_EQ(engine.clusterCount, 2);
}

TEST_F(MergeExisting, RunningOutOfMemoryRestoresTheUnlinkedClusters) {
  const std::vector<clusterinfo> existing = {App(3, {1, 2}, 50), App(7, {4}, 51), App(-1, {900})};
  Similar(0, 50, 0.95f);  // outlier 0 joins 3, outlier 1 joins nothing
  Similar(2, 50, 0.9f);   // new cluster 8 (faces 2, 3) links to 3
  auto prepare = [&] {
    engine.init(&comparator);
    Load({0, 1, 2, 3, 4});
    RunCluster(-1, {0, 1});
    RunCluster(0, {2, 3});
    RunCluster(1, {4});
  };
  prepare();
  const long allocations =
      alloc_failure::countAllocations([&] { engine.mergeInitialCluster(existing); });
  const std::set<std::string> restoring = {
      "malloc fail!!!(cid assign in mergeCluster",
      "malloc fail!!!(merge members in mergeInitialCluster",
      "malloc fail!!!(update cFeature in mergeCluster)",
      "malloc fail!!!(update cFeature2 in mergeInitialCluster"};
  std::set<std::string> seen;
  for (long k = 1; k <= allocations; ++k) {
    prepare();
    LogCapture log;
    alloc_failure::failNth(k);
    try {
      engine.mergeInitialCluster(existing);
    } catch (const std::bad_alloc&) {  // the places the merge does not catch
    }
    alloc_failure::disarm();
    for (const auto& line : log.lines) seen.insert(line.message);
    if (log.contains("malloc fail!!!(existing cluster in mergeCluster)")) {
      EXPECT_TRUE(engine.clusters.empty());
    }
    if (!log.lines.empty() && restoring.count(log.lines.back().message)) {
      EXPECT_EQ(Keys(), (Ids{-1, 3, 7, 8, 9})) << k;
      EXPECT_EQ(engine.clusters.at(8).id, 8) << k;
      EXPECT_EQ(engine.clusterCount, 5) << k;
    }
  }
  std::set<std::string> expected = restoring;
  expected.insert({"malloc fail!!!(existing cluster in mergeCluster)",
                   "malloc fail!!!(add survive in mergeInitialCluster",
                   "malloc fail!!!(merge outlier in mergeInitialCluster",
                   "malloc fail!!!(in getClusterFeature(Cluster, ivec)"});
  for (const std::string& message : expected) EXPECT_EQ(seen.count(message), 1u) << message;
}

}  // namespace
