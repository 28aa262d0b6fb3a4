#include "planning/planned_clustering.h"

#include <algorithm>
#include <vector>

#include "support/log_capture.h"
#include "support/ready_handle.h"

namespace {

using testing_support::Ids;
using testing_support::scripted;
using testing_support::taggedFeatures;

// A gallery of new faces (face id = tag; same tens digit = one person) added
// to the application's cluster 5 (faces 100 and 101, person 10) and bucket
// (face 200).
class PlannedClustering : public testing_support::ReadyHandle {
 protected:
  int Import(const Ids& order, itf_xvk_clusterinfo* existing, int runSize,
             const PlannedProgress& progress = nullptr) {
    handle.itf_xvk_releaseClusterInfo(&result);
    const std::vector<float> rows = taggedFeatures(order);
    runsSeen.clear();
    const auto observe = [&](const PlannedRunInfo& run) {
      runsSeen.push_back({run.round, run.run, run.runsInRound, run.faceCount});
    };
    return clusterInPlannedRuns(&handle, rows.data(), order.data(), static_cast<int>(order.size()),
                                existing, runSize, rounds, &result, &stats, observe, progress);
  }
  // Every face once, and which faces share a cluster: sorted face lists,
  // the bucket first.
  std::vector<Ids> Partition() {
    std::vector<Ids> partition;
    Ids all;
    for (int id : ClusterIds()) {
      Ids faces = MembersOf(id);
      std::sort(faces.begin(), faces.end());
      all.insert(all.end(), faces.begin(), faces.end());
      partition.push_back(faces);
    }
    std::sort(partition.begin() + 1, partition.end());
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end()) << "a face twice";
    return partition;
  }
  const Ids tags = {33, 20, 104, 11, 31, 25, 22, 50, 10, 30,
                    35, 21, 13,  32, 15, 12, 23, 34, 24, 14};
  std::vector<float> appFeature = testing_support::taggedFeature(100);
  int appFaces[2] = {100, 101}, appBucket[1] = {200};
  itf_xvk_clusteritem existingItems[2] = {{5, 2, appFaces, 960, appFeature.data(), 100},
                                          {-1, 1, appBucket, 0, nullptr, -1}};
  itf_xvk_clusterinfo existing{2, existingItems};
  PlannedClusteringStats stats;
  int rounds = kDefaultRounds;
  std::vector<Ids> runsSeen;  // round, run, runs in the round, faces
};

// Runs of 12 faces: people 1 and 2, then person 3, then the lone faces 50
// and 104; 104 is linked to the application's cluster 5 (person 10), so the
// third run is fed that cluster alone and 104 joins it. The application's
// clusters come first and keep their place; face 50 stays unclustered.
TEST_F(PlannedClustering, NewFacesJoinTheClustersTheyMatch) {
  ASSERT_EQ(Import(tags, &existing, 12), 5);
  EXPECT_EQ(stats.rounds, 2);  // round 2 clusters nothing
  EXPECT_EQ(stats.runs, 4);
  EXPECT_EQ(runsSeen, (std::vector<Ids>{{1, 1, 3, 12}, {1, 2, 3, 6}, {1, 3, 3, 2}, {2, 1, 1, 1}}));
  EXPECT_EQ(Clusters(), (testing_support::Listing{{-1, {200, 50}},
                                                  {0, {100, 101, 104}},
                                                  {1, {20, 21, 22, 23, 24, 25}},  // engine's order
                                                  {2, {10, 11, 12, 13, 14, 15}},
                                                  {3, {30, 31, 32, 33, 34, 35}}}));
  EXPECT_EQ(result.items[1].repFaceId, 100);
  rounds = 1;  // face 50 is still pending, but no second round
  ASSERT_EQ(Import(tags, &existing, 12), 5);
  EXPECT_EQ(stats.rounds, 1);
  // A cluster handed out without a representative (featureDim 0) is taken
  // over with its faces but never compared: 104 no longer joins it.
  existingItems[0].featureDim = 0;
  existingItems[0].feature = nullptr;
  ASSERT_EQ(Import(tags, &existing, 12), 5);
  EXPECT_EQ(MembersOf(0), (Ids{100, 101}));
}

// Stopped after the second of three runs: the first run's clusters (with the
// application's), the second run's person 3 numbered after them, and every
// face not yet run in the bucket; each face exactly once, nothing queued.
TEST_F(PlannedClustering, StoppedImportKeepsEveryFaceOnce) {
  std::vector<std::pair<int, int>> calls;
  ASSERT_EQ(Import(tags, &existing, 12, [&](int done, int total) {
              calls.push_back({done, total});
              return calls.size() < 2;
            }),
            5);
  EXPECT_TRUE(stats.stopped);
  EXPECT_EQ(calls, (std::vector<std::pair<int, int>>{{12, 20}, {18, 20}}));
  EXPECT_EQ(MembersOf(-1), (Ids{200, 50, 104}));
  EXPECT_EQ(MembersOf(3), (Ids{30, 31, 32, 33, 34, 35}));
  EXPECT_EQ(result.items[4].repFaceId, 30);
  std::size_t placed = 0;
  for (const Ids& faces : Partition()) placed += faces.size();
  EXPECT_EQ(placed, tags.size() + 3);  // each face once
  EXPECT_EQ(engine().faces.size(), 0u);  // nothing stayed queued
}

// 160 faces of 16 people, in two input orders, and stopped after the first
// run then resumed with what it handed out: each person is one cluster
// every time, the two orders give the same list, and the import costs at
// most 100 comparator calls per face (the plan 74).
TEST_F(PlannedClustering, LargeImportInAnyOrderStoppedOrNot) {
  Ids shuffled(160), reversed;
  for (int i = 0; i < 160; ++i) shuffled[i] = (i * 7919) % 160;
  reversed.assign(shuffled.rbegin(), shuffled.rend());
  std::vector<Ids> people(17);  // the bucket, empty, then 16 people
  for (int face = 0; face < 160; ++face) people[1 + face / 10].push_back(face);

  std::vector<std::vector<Ids>> lists;
  for (const Ids& order : {shuffled, reversed}) {
    scripted().comparisons.clear();
    ASSERT_GT(Import(order, nullptr, kDefaultRunSize), 0);
    EXPECT_LE(scripted().comparisons.size(), 160u * 100);
    EXPECT_EQ(Partition(), people);
    lists.push_back({});
    for (int i = 0; i < result.count; ++i)
      lists.back().push_back({result.items[i].clusterId, result.items[i].repFaceId});
    for (int id : ClusterIds()) lists.back().push_back(MembersOf(id));
  }
  EXPECT_EQ(lists[0], lists[1]);

  ASSERT_GT(Import(shuffled, nullptr, kDefaultRunSize, [](int, int) { return false; }), 0);
  ASSERT_TRUE(stats.stopped);
  // Resumed: the faces still in the bucket are imported into the rest.
  itf_xvk_clusterinfo stopped = TakeResult();
  const Ids left(stopped.items[0].faceIds, stopped.items[0].faceIds + stopped.items[0].faceCount);
  stopped.items[0].faceCount = 0;
  ASSERT_GT(Import(left, &stopped, kDefaultRunSize), 0);
  stopped.items[0].faceCount = static_cast<int>(left.size());
  handle.itf_xvk_releaseClusterInfo(&stopped);
  EXPECT_EQ(Partition(), people);
}

// Both planning entry points: a missing or unready handle, missing features,
// no faces, runs of one, no rounds, no plan, a malformed list.
TEST_F(PlannedClustering, BadInputFailsWithOneLineAndChangesNothing) {
  const int n = static_cast<int>(tags.size());
  const std::vector<float> rows = taggedFeatures(tags);
  FaceRecognition notReady;
  itf_xvk_clusteritem malformed = {-2, 0, nullptr, 0, nullptr, -1};
  itf_xvk_clusterinfo rejected{1, &malformed};
  RunPlan plan;
  plan.order = {7};
  const struct {
    FaceRecognition* handle;
    const float* features;
    int count, runSize, rounds;
    itf_xvk_clusterinfo* existing;
    RunPlan* plan;
  } cases[] = {{nullptr, rows.data(), n, 8, 1, nullptr, &plan},
               {&handle, nullptr, n, 8, 1, nullptr, &plan},
               {&handle, rows.data(), 0, 8, 1, nullptr, &plan},
               {&handle, rows.data(), n, 1, 1, nullptr, &plan},
               {&notReady, rows.data(), n, 8, 1, nullptr, &plan},
               {&handle, rows.data(), n, 8, 0, nullptr, nullptr},
               {&handle, rows.data(), n, 8, 1, &rejected, nullptr}};
  for (const auto& c : cases) {
    itf_xvk_clusterinfo list{7, nullptr};
    testing_support::LogCapture log;
    EXPECT_EQ(clusterInPlannedRuns(c.handle, c.features, tags.data(), c.count, c.existing,
                                   c.runSize, c.rounds, &list),
              -1);
    EXPECT_EQ(list.count, 7);
    if (!c.existing) {
      EXPECT_EQ(planFaceRuns(c.handle, c.features, c.count, c.runSize, c.plan), -1);
    }
    EXPECT_EQ(log.lines.size(), c.existing ? 1u : 2u);
    EXPECT_EQ(plan.order, Ids{7});
  }
  // Nothing was left queued: a run now has no faces and keeps the empty result.
  ASSERT_EQ(Run(), 1);
  EXPECT_EQ(ClusterIds(), Ids{-1});
}

}  // namespace
