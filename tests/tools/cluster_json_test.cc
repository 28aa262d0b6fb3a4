#include "tools/cluster_json.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tools/feature_file.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

ClusterRecord RealCluster(int id, std::vector<int> faces, int rep) {
  ClusterRecord cluster;
  cluster.id = id;
  cluster.faceIds = std::move(faces);
  cluster.repFaceId = rep;
  cluster.feature.assign(kFeatureDim, 0.5f);
  return cluster;
}

std::string ErrorOf(const std::string& json) {
  try {
    clustersFromJson(json, "in.json");
  } catch (const ToolError& e) {
    return e.what();
  }
  return "";
}

// A document with one cluster whose fields are spliced in as text.
std::string OneCluster(const std::string& fields) { return R"({"clusters": [{)" + fields + "}]}"; }

std::string Feature(int length) {
  std::string text = "[";
  for (int i = 0; i < length; ++i) text += i ? ",0.5" : "0.5";
  return text + "]";
}

TEST(ClusterJsonTest, RoundTripKeepsEveryFloatBitAndTheBucket) {
  ClusterRecord bucket;
  bucket.id = -1;
  bucket.faceIds = {9, 4};
  ClusterRecord cluster = RealCluster(0, {1, 2, 7}, 2);
  // Values whose shortest decimal needs all nine digits, extremes and zeros.
  const float awkward[] = {0.1f,
                           1.0f / 3.0f,
                           16777217.0f,
                           std::numeric_limits<float>::denorm_min(),
                           std::numeric_limits<float>::max(),
                           -std::numeric_limits<float>::min(),
                           -0.0f,
                           1e-38f};
  for (size_t i = 0; i < sizeof awkward / sizeof awkward[0]; ++i) cluster.feature[i] = awkward[i];
  for (int i = 10; i < kFeatureDim; ++i) cluster.feature[i] = 1.0f / static_cast<float>(i);

  const std::vector<ClusterRecord> back = clustersFromJson(clustersToJson({bucket, cluster}), "x");
  ASSERT_EQ(back.size(), 2u);
  EXPECT_EQ(back[0].id, -1);
  EXPECT_EQ(back[0].faceIds, (std::vector<int>{9, 4}));
  EXPECT_EQ(back[0].repFaceId, -1);
  EXPECT_TRUE(back[0].feature.empty());
  EXPECT_EQ(back[1].faceIds, cluster.faceIds);
  EXPECT_EQ(back[1].repFaceId, 2);
  ASSERT_EQ(back[1].feature.size(), cluster.feature.size());
  EXPECT_EQ(
      std::memcmp(back[1].feature.data(), cluster.feature.data(), kFeatureDim * sizeof(float)), 0);
}

TEST(ClusterJsonTest, AcceptsAFaceInTwoClustersAsTheLibraryReportsIt) {
  const auto clusters =
      clustersFromJson(clustersToJson({RealCluster(0, {1, 5}, 1), RealCluster(1, {5, 6}, 6)}), "x");
  EXPECT_EQ(clusters.size(), 2u);
}

TEST(ClusterJsonTest, RejectsMalformedDocumentsWithTheReason) {
  const std::string feature = R"("representative_feature": )" + Feature(kFeatureDim);
  const struct {
    std::string json, expected;
  } cases[] = {
      {R"([1, 2])", "no \"clusters\" array"},
      {OneCluster(R"("cluster_id": 0.5, "face_ids": [1])"), "\"cluster_id\" must be an integer"},
      {OneCluster(R"("cluster_id": 4294967296, "face_ids": [1])"), "must be an integer"},
      {OneCluster(R"("cluster_id": 0)"), "\"face_ids\" must be an array"},
      {OneCluster(R"("cluster_id": -1, "face_ids": [3, 1, 3])"), "duplicate face id 3"},
      {OneCluster(R"("cluster_id": 0, "face_ids": [1], )" + feature),
       "missing \"representative_face_id\""},
      {OneCluster(R"("cluster_id": 0, "face_ids": [1], "representative_face_id": 1, )"
                  R"("representative_feature": )" +
                  Feature(959)),
       "array of 960 numbers"},
      {R"({"clusters": [{"cluster_id": 2, "face_ids": [1], "representative_face_id": 1, )" +
           feature + R"(}, {"cluster_id": 2, "face_ids": [5], "representative_face_id": 5, )" +
           feature + "}]}",
       "cluster 1: duplicate cluster id 2"},
  };
  for (const auto& c : cases) {
    const std::string message = ErrorOf(c.json);
    EXPECT_NE(message.find(c.expected), std::string::npos) << c.expected << " / " << message;
    EXPECT_EQ(message.rfind("in.json", 0), 0u) << message;
  }
}

}  // namespace
}  // namespace tool
