#include "clustering/engine_fixture.h"

namespace {

using testing_support::scripted;

class ClusterResults : public EngineTest {
 protected:
  // Face 1 is the most similar to the others on average (0.75 against 0.5).
  void SetUp() override {
    EngineTest::SetUp();
    Similar(0, 1, 0.75f);
    Similar(0, 2, 0.25f);
    Similar(1, 2, 0.75f);
  }
};

TEST_F(ClusterResults, MedoidTakesTheBestMeanAndOtherwiseTheEarlierOrFirstFace) {
  Load({0, 1, 2});
  Cluster cluster, pair, empty;
  cluster.members = {7};
  engine.getClusterFeature(cluster, {2, 0, 1});
  EXPECT_EQ(cluster.members, (Vec<int>{7, 102, 100, 101}));
  EXPECT_EQ(cluster.repFaceId, 101);
  EXPECT_EQ(cluster.feature, Feature(1));
  engine.getClusterFeature(pair, {2, 1});  // both 0.75: the earlier listed
  EXPECT_EQ(pair.repFaceId, 102);
  engine.getClusterFeature(empty, {});  // face 0, though not listed
  EXPECT_EQ(empty.feature, Feature(0));

  engine.kernel.assign(3, Vec<float>(3, 0.0f));  // no positive mean: face 0 again
  Cluster unrelated;
  engine.getClusterFeature(unrelated, {1, 2});
  EXPECT_EQ(unrelated.repFaceId, 100);
}

TEST_F(ClusterResults, GivenFeaturesReplaceTheLoadedFaces) {
  Load({5});
  std::vector<float> features = testing_support::taggedFeatures({2, 0, 1});
  int rep = -1;
  EXPECT_EQ(engine.getClusterFeature(features.data(), 3, {20, 21, 22}, &rep), Feature(1));
  EXPECT_EQ(rep, 22);
  ASSERT_EQ(engine.faces.size(), 3u);  // left loaded, in feature order
  EXPECT_EQ(engine.faces[0].faceId, 21);

  EXPECT_TRUE(engine.getClusterFeature(nullptr, 5).empty());
  EXPECT_EQ(engine.faces.size(), 3u);  // the two-argument form checks first
  EXPECT_TRUE(engine.getClusterFeature(nullptr, 5, {}, &rep).empty());
  EXPECT_TRUE(engine.faces.empty());  // the four-argument form resets first
  Load({0, 1});
  EXPECT_EQ(engine.getClusterFeature(features.data(), 1), Feature(2));
  EXPECT_TRUE(engine.faces.empty());  // one feature: returned, not loaded
}

TEST_F(ClusterResults, RecommendationKeepsOnlyScoresAbove920) {
  for (const auto& [score, expected] : {std::pair{1.0f, 1023}, {0.81f, 925}, {0.8f, -1}}) {
    scripted().fallback = [score = score](const float*, const float*) { return score; };
    EXPECT_EQ(engine.recommendCluster(Feature(7).data(), Feature(8).data(), 3), expected) << score;
  }
}

}  // namespace
