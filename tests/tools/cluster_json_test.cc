#include "tools/formats/cluster_json.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <tuple>

#include "tools/formats/feature_file.h"
#include "tools/tool_error.h"

namespace tool {
namespace {

std::string Feature(int length) {
  std::string text = "[";
  for (int i = 0; i < length; ++i) text += i ? ",0.5" : "0.5";
  return text + "]";
}

TEST(ClusterJsonTest, RoundTripKeepsEveryFloatBitTheBucketSharedFacesAndFeatureDimZero) {
  // Face 7 in two clusters, as the library itself reports a face it adds to
  // every existing cluster it matches.
  std::vector<ClusterRecord> clusters = {{-1, {9, 4}, -1, {}},
                                         {0, {1, 2, 7}, 2, std::vector<float>(kFeatureDim, 0.5f)},
                                         {1, {7, 8}, 8, std::vector<float>(kFeatureDim, 0.5f)},
                                         {2, {5}, 5, {}}};  // featureDim 0: no representative
  // Values whose shortest decimal needs all nine digits, extremes and zeros.
  using Limits = std::numeric_limits<float>;
  const float awkward[] = {0.1f,          1.0f / 3.0f,    16777217.0f, Limits::denorm_min(),
                           Limits::max(), -Limits::min(), -0.0f,       1e-38f};
  std::vector<float>& feature = clusters[1].feature;
  std::copy(std::begin(awkward), std::end(awkward), feature.begin());
  for (int i = 10; i < kFeatureDim; ++i) feature[i] = 1.0f / static_cast<float>(i);

  const std::vector<ClusterRecord> back = clustersFromJson(clustersToJson(clusters), "x");
  ASSERT_EQ(back.size(), clusters.size());
  for (size_t c = 0; c < clusters.size(); ++c) {
    const ClusterRecord &a = back[c], &b = clusters[c];
    EXPECT_EQ(std::tie(a.id, a.faceIds, a.repFaceId), std::tie(b.id, b.faceIds, b.repFaceId));
    EXPECT_TRUE(a.feature.size() == b.feature.size() &&
                (a.feature.empty() ||
                 std::memcmp(a.feature.data(), b.feature.data(), a.feature.size() * 4) == 0))
        << c;
  }
}

TEST(ClusterJsonTest, RejectsMalformedDocumentsWithTheReason) {
  const std::string feature = R"("representative_feature": )" + Feature(kFeatureDim);
  auto one = [](const std::string& fields) {
    return R"({"format": "xvkfc-clusters", "clusters": [{)" + fields + "}]}";
  };
  const struct {
    std::string json, expected;
  } cases[] = {
      {R"([1, 2])", "no \"clusters\" array"},
      {R"({"format": "other", "clusters": []})", "(format \"other\", expected"},
      {R"({"clusters": []})", "no \"format\": a clusters file starts"},
      {R"({"format": "xvkfc-clusters", "feature_dim": 128, "clusters": []})",
       "\"feature_dim\" must be 960"},
      {R"({"format": "xvkfc-clusters", "version": 2, "clusters": []})", "version 2 is newer"},
      {one(R"("cluster_id": 0.5, "face_ids": [1])"), "\"cluster_id\" must be an integer"},
      {one(R"("cluster_id": 4294967296, "face_ids": [1])"), "must be an integer"},
      {one(R"("cluster_id": -2, "face_ids": [900])"), "cluster id -2 is below -1"},
      {one(R"("cluster_id": 0)"), "\"face_ids\" must be an array"},
      {one(R"("cluster_id": -1, "face_ids": [3, 1, 3])"), "duplicate face id 3"},
      {one(R"("cluster_id": 0, "face_ids": [1], )" + feature),
       "missing \"representative_face_id\""},
      {one(R"("cluster_id": 0, "face_ids": [1], "representative_face_id": 1, )"
           R"("representative_feature": )" +
           Feature(959)),
       "array of 960 numbers"},
      // Finite as a double, infinite as the float the library takes.
      {one(R"("cluster_id": 0, "face_ids": [1], "representative_face_id": 1, )"
           R"("representative_feature": [1e39)" +
           Feature(kFeatureDim).substr(4)),
       "must hold finite float32 numbers"},
      {one(R"("cluster_id": 2, "face_ids": [1], "representative_face_id": 1, )" + feature +
           R"(}, {"cluster_id": 2, "face_ids": [5], "representative_face_id": 5, )" + feature),
       "cluster 1: duplicate cluster id 2"},
  };
  for (const auto& c : cases) {
    std::string message;
    try {
      clustersFromJson(c.json, "in.json");
    } catch (const ToolError& e) {
      message = e.what();
    }
    EXPECT_NE(message.find(c.expected), std::string::npos) << c.expected << " / " << message;
    EXPECT_EQ(message.rfind("in.json", 0), 0u) << message;
  }
}

}  // namespace
}  // namespace tool
