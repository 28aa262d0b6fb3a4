#include "planning/planned_clustering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <vector>

#include "interface/face_recognition.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::scripted;
using testing_support::taggedFeature;
using Ids = std::vector<int>;

struct Cluster {
  int id;
  Ids faces;
  int repFaceId;
  bool operator==(const Cluster& o) const {
    return id == o.id && faces == o.faces && repFaceId == o.repFaceId;
  }
};
void PrintTo(const Cluster& c, std::ostream* os) {
  *os << c.id << ":" << testing::PrintToString(c.faces) << " rep " << c.repFaceId;
}

// A gallery of new faces (face id = tag; same tens digit = one person, score
// 0.9; else -0.4) added to the application's cluster 5 (faces 100 and 101,
// person 10) and bucket (face 200).
class PlannedClusteringTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
    scripted().fallback = testing_support::tensDigitPeople;
    existingItems[0] = {5, 2, appFaces, 960, appFeature.data(), 100};
    existingItems[1] = {-1, 1, appBucket, 0, nullptr, -1};
  }
  void TearDown() override { handle.itf_xvk_Release(); }

  // Reads and gives back a list the library filled.
  std::vector<Cluster> Take(itf_xvk_clusterinfo& list) {
    std::vector<Cluster> clusters;
    for (int i = 0; i < list.count; ++i) {
      const itf_xvk_clusteritem& item = list.items[i];
      clusters.push_back(
          {item.clusterId, Ids(item.faceIds, item.faceIds + item.faceCount), item.repFaceId});
    }
    handle.itf_xvk_releaseClusterInfo(&list);
    return clusters;
  }
  FaceRecognition handle;
  const Ids tags = {33, 20, 104, 11, 31, 25, 22, 50, 10, 30,
                    35, 21, 13,  32, 15, 12, 23, 34, 24, 14};
  std::vector<float> features = testing_support::taggedFeatures(tags);
  std::vector<float> appFeature = taggedFeature(100);
  int appFaces[2] = {100, 101};
  int appBucket[1] = {200};
  itf_xvk_clusteritem existingItems[2];
  itf_xvk_clusterinfo existing{2, existingItems};
};

// Runs of 12 faces: people 1 and 2, then person 3, then the lone faces 50
// and 104; 104 is linked to the application's cluster 5 (person 10), so the
// third run is fed that cluster alone and 104 joins it. The application's
// clusters come first and keep their place; face 50 stays unclustered.
TEST_F(PlannedClusteringTest, NewFacesJoinTheClustersTheyMatch) {
  itf_xvk_clusterinfo planned{0, nullptr};
  PlannedClusteringStats stats;
  ASSERT_EQ(
      clusterInPlannedRuns(&handle, features.data(), tags.data(), static_cast<int>(tags.size()),
                           &existing, 12, kDefaultRounds, &planned, &stats),
      5);
  const std::vector<Cluster> result = Take(planned);
  EXPECT_EQ(stats.rounds, 2);  // round 2 clusters nothing
  EXPECT_EQ(stats.runs, 4);
  EXPECT_EQ(result[0], (Cluster{-1, {200, 50}, -1}));
  EXPECT_EQ(result[1], (Cluster{0, {100, 101, 104}, 100}));
  EXPECT_EQ(result[2].faces, (Ids{20, 21, 22, 23, 24, 25}));  // the engine's order
  EXPECT_EQ(result[3].faces, (Ids{10, 11, 12, 13, 14, 15}));
  EXPECT_EQ(result[4].faces, (Ids{30, 31, 32, 33, 34, 35}));
}

// Stopped after the second of three runs: the first run's clusters (with the
// application's), the second run's person 3 numbered after them, and every
// face not yet run in the bucket; each face exactly once, nothing queued.
TEST_F(PlannedClusteringTest, StoppedImportKeepsEveryFaceOnce) {
  std::vector<std::pair<int, int>> calls;
  auto stopAfterTwo = [&](int done, int total) {
    calls.push_back({done, total});
    return calls.size() < 2;
  };
  itf_xvk_clusterinfo planned{0, nullptr};
  PlannedClusteringStats stats;
  const int n = static_cast<int>(tags.size());
  ASSERT_EQ(clusterInPlannedRuns(&handle, features.data(), tags.data(), n, &existing, 12,
                                 kDefaultRounds, &planned, &stats, nullptr, stopAfterTwo),
            5);
  EXPECT_TRUE(stats.stopped);
  EXPECT_EQ(calls, (std::vector<std::pair<int, int>>{{12, n}, {18, n}}));
  const std::vector<Cluster> result = Take(planned);
  EXPECT_EQ(result[0], (Cluster{-1, {200, 50, 104}, -1}));
  EXPECT_EQ(result[4], (Cluster{3, {30, 31, 32, 33, 34, 35}, 30}));
  Ids all;
  for (const Cluster& c : result) all.insert(all.end(), c.faces.begin(), c.faces.end());
  std::sort(all.begin(), all.end());
  Ids expected = tags;
  expected.insert(expected.end(), {100, 101, 200});
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(all, expected);
  // Nothing stayed queued: a run now has no faces and keeps the last result.
  EXPECT_EQ(handle.itf_xvk_runClustering(nullptr), 1);
  itf_xvk_clusterinfo after{0, nullptr};
  handle.itf_xvk_getClusterInfo(&after);
  EXPECT_EQ(Take(after).size(), 1u);  // the second run's own result: person 3
}

// Every face of `clusters` once, and which faces share a cluster: sorted
// face lists of the clusters, the bucket first.
std::vector<Ids> Partition(const std::vector<Cluster>& clusters) {
  std::vector<Ids> partition;
  Ids all;
  for (const Cluster& c : clusters) {
    Ids faces = c.faces;
    std::sort(faces.begin(), faces.end());
    all.insert(all.end(), faces.begin(), faces.end());
    partition.push_back(faces);
  }
  std::sort(partition.begin() + 1, partition.end());
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end()) << "a face twice";
  return partition;
}

// 160 faces of 16 people, in two input orders, and stopped after the first
// run then resumed with what it handed out: each person is one cluster
// every time, each face is placed once, the two orders give the same list,
// and the import costs at most 100 comparator calls per face (the plan 74).
TEST_F(PlannedClusteringTest, LargeImportInAnyOrderStoppedOrNot) {
  Ids shuffled(160), reversed;
  for (int i = 0; i < 160; ++i) shuffled[i] = (i * 7919) % 160;
  reversed.assign(shuffled.rbegin(), shuffled.rend());
  std::vector<Ids> people;
  for (int p = 0; p < 16; ++p) {
    people.push_back({});
    for (int k = 0; k < 10; ++k) people.back().push_back(p * 10 + k);
  }
  people.insert(people.begin(), Ids{});  // the bucket, empty

  std::vector<std::vector<Cluster>> results;
  for (const Ids& order : {shuffled, reversed}) {
    const std::vector<float> rows = testing_support::taggedFeatures(order);
    scripted().comparisons.clear();
    itf_xvk_clusterinfo list{0, nullptr};
    ASSERT_GT(clusterInPlannedRuns(&handle, rows.data(), order.data(), 160, nullptr,
                                   kDefaultRunSize, kDefaultRounds, &list),
              0);
    EXPECT_LE(scripted().comparisons.size(), 160u * 100);
    results.push_back(Take(list));
    EXPECT_EQ(Partition(results.back()), people);
  }
  EXPECT_EQ(results[0], results[1]);

  const std::vector<float> rows = testing_support::taggedFeatures(shuffled);
  itf_xvk_clusterinfo stopped{0, nullptr};
  PlannedClusteringStats stats;
  ASSERT_GT(clusterInPlannedRuns(&handle, rows.data(), shuffled.data(), 160, nullptr,
                                 kDefaultRunSize, kDefaultRounds, &stopped, &stats, nullptr,
                                 [](int, int) { return false; }),
            0);
  ASSERT_TRUE(stats.stopped);
  // Resumed: the faces still in the bucket are imported into the rest.
  const Ids left(stopped.items[0].faceIds, stopped.items[0].faceIds + stopped.items[0].faceCount);
  stopped.items[0].faceCount = 0;
  std::vector<float> leftRows;
  for (int id : left) {
    const std::vector<float> row = taggedFeature(id);
    leftRows.insert(leftRows.end(), row.begin(), row.end());
  }
  itf_xvk_clusterinfo resumed{0, nullptr};
  ASSERT_GT(clusterInPlannedRuns(&handle, leftRows.data(), left.data(), static_cast<int>(left.size()),
                                 &stopped, kDefaultRunSize, kDefaultRounds, &resumed),
            0);
  stopped.items[0].faceCount = static_cast<int>(left.size());
  handle.itf_xvk_releaseClusterInfo(&stopped);
  EXPECT_EQ(Partition(Take(resumed)), people);
}

TEST_F(PlannedClusteringTest, BadInputFailsWithOneLineAndChangesNothing) {
  const int n = static_cast<int>(tags.size());
  FaceRecognition notReady;
  itf_xvk_clusteritem malformed = {-2, 0, nullptr, 0, nullptr, -1};
  itf_xvk_clusterinfo rejected{1, &malformed};
  struct Case {
    FaceRecognition* handle;
    const float* features;
    int count, runSize, rounds;
    itf_xvk_clusterinfo* existing;
  };
  const Case cases[] = {
      {nullptr, features.data(), n, 8, 1, nullptr},  {&handle, nullptr, n, 8, 1, nullptr},
      {&handle, features.data(), 0, 8, 1, nullptr},  {&handle, features.data(), n, 1, 1, nullptr},
      {&handle, features.data(), n, 8, 0, nullptr},  {&notReady, features.data(), n, 8, 1, nullptr},
      {&handle, features.data(), n, 8, 1, &rejected}};
  for (const Case& c : cases) {
    itf_xvk_clusterinfo result{7, nullptr};
    testing_support::LogCapture log;
    EXPECT_EQ(clusterInPlannedRuns(c.handle, c.features, tags.data(), c.count, c.existing,
                                   c.runSize, c.rounds, &result),
              -1);
    EXPECT_EQ(result.count, 7);
    EXPECT_EQ(log.lines.size(), 1u);
  }
  // Nothing was left queued: a run now has no faces and keeps the empty result.
  ASSERT_EQ(handle.itf_xvk_runClustering(nullptr), 1);
  itf_xvk_clusterinfo list{0, nullptr};
  handle.itf_xvk_getClusterInfo(&list);
  EXPECT_EQ(Take(list), (std::vector<Cluster>{{-1, {}, -1}}));
}

}  // namespace
