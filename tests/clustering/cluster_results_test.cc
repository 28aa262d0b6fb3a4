#include <new>
#include <set>
#include <string>

#include "clustering/engine_fixture.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

using testing_support::LogCapture;
using testing_support::scripted;

std::vector<float> Concat(const std::vector<int>& tags) {
  std::vector<float> out;
  for (int tag : tags) {
    const std::vector<float> f = testing_support::taggedFeature(tag);
    out.insert(out.end(), f.begin(), f.end());
  }
  return out;
}

class ClusterResults : public EngineTest {
 protected:
  // Face 1 is the most similar to the others on average (0.75 vs 0.5).
  void ScriptMedoidOne() {
    Similar(0, 1, 0.75f);
    Similar(0, 2, 0.25f);
    Similar(1, 2, 0.75f);
  }
};

TEST_F(ClusterResults, MedoidIsTheBestMeanWithTiesToTheEarlierListedFace) {
  ScriptMedoidOne();
  Load({0, 1, 2});
  Cluster cluster;
  cluster.members = {7};
  engine.getClusterFeature(cluster, {2, 0, 1});
  EXPECT_EQ(cluster.members, (Vec<int>{7, 102, 100, 101}));
  EXPECT_EQ(cluster.repFaceId, 101);
  EXPECT_EQ(cluster.feature, Feature(1));

  Cluster pair;  // both score 0.75
  engine.getClusterFeature(pair, {2, 1});
  EXPECT_EQ(pair.repFaceId, 102);
}

TEST_F(ClusterResults, NoPositiveMeanOrNoFacesFallsBackToFaceZero) {
  scripted().fallback = [](const float*, const float*) { return -1.0f; };  // similarity 0
  Load({0, 1, 2});
  Cluster unrelated, empty, single;
  engine.getClusterFeature(unrelated, {1, 2});
  EXPECT_EQ(unrelated.repFaceId, 100);  // face 0 is not even listed
  empty.members = {5};
  engine.getClusterFeature(empty, {});
  EXPECT_EQ(empty.members, Vec<int>{5});
  EXPECT_EQ(empty.feature, Feature(0));
  engine.getClusterFeature(single, {2});
  EXPECT_EQ(single.repFaceId, 102);
}

TEST_F(ClusterResults, GivenFeaturesBecomeTheLoadedFaces) {
  ScriptMedoidOne();
  Load({5});
  std::vector<float> features = Concat({2, 0, 1});
  int rep = -1;
  EXPECT_EQ(engine.getClusterFeature(features.data(), 3, {20, 21, 22}, &rep), Feature(1));
  EXPECT_EQ(rep, 22);
  ASSERT_EQ(engine.faces.size(), 3u);  // sorted by feature, face 5 gone
  EXPECT_EQ(engine.faces[0].faceId, 21);
  EXPECT_EQ(engine.faces[2].faceId, 20);
}

TEST_F(ClusterResults, OneOrNoFeatureLoadsNothing) {
  Load({0, 1});
  EXPECT_TRUE(engine.getClusterFeature(nullptr, 5).empty());
  EXPECT_EQ(engine.faces.size(), 2u);  // the two-argument form checks first

  std::vector<float> one = Feature(3);
  EXPECT_EQ(engine.getClusterFeature(one.data(), 1), one);
  EXPECT_TRUE(engine.faces.empty());
  EXPECT_EQ(engine.featureMats[0].rowCount(), 0);

  Load({0, 1});
  int rep = -7;
  EXPECT_TRUE(engine.getClusterFeature(nullptr, 5, {}, &rep).empty());
  EXPECT_TRUE(engine.faces.empty());  // the reset comes before the check
  EXPECT_EQ(rep, -7);
}

TEST_F(ClusterResults, ClusterListFollowsKeysAndTakesIdsFromTheClusters) {
  engine.clusters[-1].members = {9};
  engine.clusters[-1].feature = Feature(1);
  engine.clusters[-1].repFaceId = 9;
  engine.clusters[7] = Cluster();
  engine.clusters[7].id = 1;
  engine.clusters[7].members = {3, 4};
  engine.clusters[7].feature = Feature(2);
  engine.clusters[7].repFaceId = 4;
  engine.clusters[2].members = {5};

  const std::vector<clusterinfo> infos = engine.getClusterInfo();
  ASSERT_EQ(infos.size(), 3u);
  EXPECT_EQ(infos[0].id, -1);
  EXPECT_EQ(infos[0].faceIds, std::vector<int>{9});
  EXPECT_TRUE(infos[0].feature.empty());
  EXPECT_EQ(infos[0].repFaceId, 0);
  EXPECT_EQ(infos[1].id, 0);
  EXPECT_EQ(infos[2].id, 1);
  EXPECT_EQ(infos[2].faceIds, (std::vector<int>{3, 4}));
  EXPECT_EQ(infos[2].feature, Feature(2));
  EXPECT_EQ(infos[2].repFaceId, 4);
}

TEST_F(ClusterResults, RecommendationKeepsOnlyScoresAbove920) {
  const std::vector<std::pair<float, int>> cases = {
      {1.0f, 1023}, {1.5f, 1023}, {0.81f, 925}, {0.8f, -1}, {-1.0f, -1}};
  for (const auto& [score, expected] : cases) {
    scripted().fallback = [score = score](const float*, const float*) { return score; };
    EXPECT_EQ(engine.recommendCluster(Feature(0).data(), Feature(1).data(), 3), expected) << score;
  }
}

TEST_F(ClusterResults, RunningOutOfMemoryGivesAnEmptyResult) {
  ScriptMedoidOne();
  std::vector<float> features = Concat({0, 1, 2});
  const long allocations =
      alloc_failure::countAllocations([&] { engine.getClusterFeature(features.data(), 3); });
  std::set<std::string> seen;
  for (long k = 1; k <= allocations; ++k) {
    LogCapture log;
    alloc_failure::failNth(k);
    const Vec<float> result = engine.getClusterFeature(features.data(), 3);
    alloc_failure::disarm();
    // Storage kept from earlier calls can make a later call allocate less.
    if (!alloc_failure::fired()) {
      EXPECT_EQ(result, Feature(1));
      continue;
    }
    ASSERT_TRUE(result.empty()) << k;
    ASSERT_EQ(log.lines.size(), 1u) << k;
    seen.insert(log.lines[0].message);
  }
  for (const char* message :
       {"malloc fail!!!(features assign in getClusterFeature(float*, int, ivec, int*)",
        "malloc fail!!!(add members in getClusterFeature(float*, int, ivec, int*)",
        "malloc fail!!!(in getClusterFeature(Cluster, ivec)",
        "malloc fail!!!(in getClusterFeature(float*, int)"}) {
    EXPECT_EQ(seen.count(message), 1u) << message;
  }

  engine.clusters[0].members = {1, 2};
  std::vector<clusterinfo>().swap(engine.clusterInfos);
  const long listing = alloc_failure::countAllocations([&] { engine.getClusterInfo(); });
  seen.clear();
  for (long k = 1; k <= listing; ++k) {
    std::vector<clusterinfo>().swap(engine.clusterInfos);  // as the count found it
    LogCapture log;
    alloc_failure::failNth(k);
    try {
      EXPECT_TRUE(engine.getClusterInfo().empty());
      EXPECT_TRUE(engine.clusterInfos.empty());
      seen.insert(log.lines.at(0).message);
    } catch (const std::bad_alloc&) {  // copying the finished list is not caught
    }
    alloc_failure::disarm();
  }
  EXPECT_EQ(seen, (std::set<std::string>{"malloc fail!!!(add members in getClusterInfo",
                                         "malloc fail!!!(add cluster in getClusterInfo"}));
}

}  // namespace
