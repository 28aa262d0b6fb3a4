#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/ready_handle.h"

namespace {

using testing_support::LogCapture;
using testing_support::Ids;
using testing_support::Listing;
using testing_support::taggedFeature;

// Application cycles. A face's tag is its face id; tags with the same tens
// digit are one person (similarity 0.95), other pairs have similarity 0.3.
using ClusteringCycle = testing_support::ReadyHandle;

TEST_F(ClusteringCycle, SecondBatchJoinsTheApplicationsClusters) {
  Load({10, 11, 12, 20, 21, 30});
  ASSERT_EQ(Run(), 1);
  ASSERT_EQ(Clusters(), (Listing{{-1, {30}}, {0, {10, 11, 12}}, {1, {20, 21}}}));
  EXPECT_EQ(result.items[0].feature, nullptr);  // the bucket has no representative
  EXPECT_EQ(result.items[0].repFaceId, -1);
  for (int i = 1; i < result.count; ++i) {  // the medoid's own feature
    const itf_xvk_clusteritem& item = result.items[i];
    EXPECT_EQ(std::vector<float>(item.feature, item.feature + 960), taggedFeature(item.repFaceId));
  }

  // The application keeps its own ids (person 1 as 9, person 2 as 4); the
  // result is renumbered in id order, new clusters last.
  result.items[1].clusterId = 9;
  result.items[2].clusterId = 4;
  itf_xvk_clusterinfo previous = TakeResult();
  Load({13, 40, 41, 50});
  ASSERT_EQ(Run(&previous), 1);
  handle.itf_xvk_releaseClusterInfo(&previous);
  EXPECT_EQ(Clusters(),
            (Listing{{-1, {30, 50}}, {0, {20, 21}}, {1, {10, 11, 12, 13}}, {2, {40, 41}}}));

  // A run without new faces neither clusters nor merges: the result stays.
  std::vector<float> feature = taggedFeature(70);
  itf_xvk_clusteritem other = {42, 0, nullptr, 960, feature.data(), 0};
  itf_xvk_clusterinfo list = {1, &other};
  ASSERT_EQ(Run(&list), 1);
  EXPECT_EQ(ClusterIds(), (Ids{-1, 0, 1, 2}));
}

TEST_F(ClusteringCycle, MalformedListsAreRejectedAndChangeNothing) {
  Load({10, 11});
  ASSERT_EQ(Run(), 1);
  Load({20, 21});
  std::vector<float> feature = taggedFeature(10);
  int faceIds[] = {10, 11};
  const itf_xvk_clusteritem good = {0, 2, faceIds, 960, feature.data(), 10};
  const std::vector<std::function<void(itf_xvk_clusterinfo&, itf_xvk_clusteritem&)>> breakers = {
      [](auto& list, auto&) { list.count = -1; },
      [](auto& list, auto&) { list.items = nullptr; },
      [](auto&, auto& item) { item.clusterId = -2; },
      [](auto&, auto& item) { item.clusterId = INT_MAX - 3; },  // + 2 queued faces + 2 overflows
      [](auto&, auto& item) { item.faceCount = -1; },
      [](auto&, auto& item) { item.faceIds = nullptr; },
      [](auto&, auto& item) { item.featureDim = 959; },
      [](auto&, auto& item) { item.feature = nullptr; }};
  for (const auto& breakIt : breakers) {
    itf_xvk_clusteritem item = good;
    itf_xvk_clusterinfo list = {1, &item};
    breakIt(list, item);
    LogCapture log;
    EXPECT_EQ(handle.itf_xvk_runClustering(&list), 0);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0].message.rfind("itf_xvk_runClustering: rejected", 0), 0u)
        << log.lines[0].message;
  }
  EXPECT_EQ(handle.engine->faces.size(), 2u);  // still loaded
  Read();
  EXPECT_EQ(MembersOf(0), (Ids{10, 11}));  // still the previous result
}

TEST_F(ClusteringCycle, TakesBackLargeIdsAndClustersWithoutAFeature) {
  // Six queued faces: ids up to INT_MAX - 8 leave room for the new clusters.
  // Cluster 5 has no feature (featureDim 0, as the library hands out a
  // cluster whose representative ran out of memory): nothing is compared
  // with it, so a null feature is never read, and it keeps its place.
  const int big = INT_MAX - 8;
  std::vector<float> f10 = taggedFeature(10);
  int idsBig[] = {10}, ids5[] = {50, 51};
  itf_xvk_clusteritem items[] = {{big, 1, idsBig, 960, f10.data(), 10},
                                 {5, 2, ids5, 0, nullptr, 0}};
  itf_xvk_clusterinfo existing = {2, items};
  Load({13, 14, 15, 20, 21, 30});
  ASSERT_EQ(Run(&existing), 1);
  EXPECT_EQ(Clusters(), (Listing{{-1, {30}}, {0, {50, 51}}, {1, {10, 13, 14, 15}}, {2, {20, 21}}}));
  EXPECT_EQ(result.items[1].featureDim, 0);

  // The result goes back in as it came out.
  itf_xvk_clusterinfo previous = TakeResult();
  Load({52});
  EXPECT_EQ(Run(&previous), 1);
  handle.itf_xvk_releaseClusterInfo(&previous);
  EXPECT_EQ(MembersOf(0), (Ids{50, 51}));
  EXPECT_EQ(MembersOf(-1), (Ids{30, 52}));
}

TEST_F(ClusteringCycle, ReadingAndReleasingTheResult) {
  handle.itf_xvk_getClusterInfo(&result);  // before any run: the empty bucket
  ASSERT_EQ(result.count, 1);
  EXPECT_NE(result.items[0].faceIds, nullptr);  // allocated even for 0 ids
  handle.itf_xvk_releaseClusterInfo(&result);  // a single element is freed too
  EXPECT_EQ(result.count, 0);
  EXPECT_EQ(result.items, nullptr);
  EXPECT_EQ(handle.itf_xvk_getClusterInfo(nullptr), 0);

  handle.engine->clusters.clear();
  itf_xvk_clusteritem untouched;
  itf_xvk_clusterinfo empty = {5, &untouched};
  EXPECT_EQ(handle.itf_xvk_getClusterInfo(&empty), 0);
  EXPECT_EQ(empty.count, 0);
  EXPECT_EQ(empty.items, &untouched);
  handle.itf_xvk_releaseClusterInfo(&empty);  // count 0: not freed
  EXPECT_EQ(empty.items, &untouched);
}

TEST_F(ClusteringCycle, RecommendationSkipsTheBucketAndKeepsTheEarlierTie) {
  std::vector<float> f10 = taggedFeature(10), f11 = taggedFeature(11), f20 = taggedFeature(20);
  std::vector<float> query = taggedFeature(12), stranger = taggedFeature(30);
  itf_xvk_clusteritem items[] = {{-1, 0, nullptr, 0, nullptr, 0},
                                 {7, 0, nullptr, 960, f20.data(), 0},
                                 {3, 0, nullptr, 960, f10.data(), 0},
                                 {5, 0, nullptr, 960, f11.data(), 0}};
  itf_xvk_clusterinfo list = {4, items};
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, query.data(), 99), 3);
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, stranger.data(), 0), -1);
  itf_xvk_clusterinfo one = {1, &items[2]};  // a list of one cluster is a list too
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&one, query.data(), 0), 3);
  // Scores on 0..1023, kept above 920 only, clamped: 1.2 ties with 1.5.
  testing_support::scripted().setScore(f20, query, 1.2f);
  testing_support::scripted().setScore(f10, query, 1.5f);
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, query.data(), 0), 7);
  EXPECT_EQ(testing_support::scripted().comparisons.back().first,  // the cluster's feature first
            testing_support::featureKey(f11));
  for (auto [score, expected] : {std::pair{0.81f, 7}, {0.8f, -1}}) {
    testing_support::scripted().pairScores.clear();
    testing_support::scripted().fallback = [score = score](const float*, const float*) {
      return score;
    };
    EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, query.data(), 0), expected) << score;
  }
  items[3].featureDim = 959;
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, query.data(), 0), -1);
  items[3].feature = nullptr;
  EXPECT_EQ(handle.itf_xvk_recommendCluster(&list, query.data(), 0), -1);
}

}  // namespace
