// Representatives (medoids).
#include "support/ready_handle.h"

namespace {

using testing_support::taggedFeature;
using testing_support::taggedFeatures;

class ClusterResults : public testing_support::ReadyHandle {
 protected:
  // Face 11 is the most similar to the others on average (0.75 against 0.5).
  void SetUp() override {
    ReadyHandle::SetUp();
    testing_support::Similar(10, 11, 0.75f);
    testing_support::Similar(10, 12, 0.25f);
    testing_support::Similar(11, 12, 0.75f);
  }
  int RepresentativeOf(const Vec<int>& rows) {
    Cluster cluster;
    engine().getClusterFeature(cluster, rows);
    EXPECT_EQ(cluster.feature, taggedFeature(cluster.repFaceId));
    return cluster.repFaceId;
  }
};

TEST_F(ClusterResults, MedoidTakesTheBestMeanAndOtherwiseTheEarlierOrFirstFace) {
  LoadKernel({10, 11, 12});
  Cluster cluster;
  cluster.members = {7};
  engine().getClusterFeature(cluster, {2, 0, 1});
  EXPECT_EQ(cluster.members, (Vec<int>{7, 12, 10, 11}));
  EXPECT_EQ(RepresentativeOf({2, 0, 1}), 11);
  EXPECT_EQ(RepresentativeOf({2, 1}), 12);  // both 0.75: the earlier listed
  EXPECT_EQ(RepresentativeOf({}), 10);      // face 0, though not listed
  engine().kernel.assign(3, Vec<float>(3, 0.0f));  // no positive mean: face 0 again
  EXPECT_EQ(RepresentativeOf({1, 2}), 10);
}

TEST_F(ClusterResults, GivenFeaturesReplaceTheLoadedFaces) {
  Load({15});
  std::vector<float> features = taggedFeatures({12, 10, 11});
  int rep = -1;
  EXPECT_EQ(engine().getClusterFeature(features.data(), 3, {20, 21, 22}, &rep), taggedFeature(11));
  EXPECT_EQ(rep, 22);
  ASSERT_EQ(engine().faces.size(), 3u);  // left loaded, in feature order
  EXPECT_EQ(engine().faces[0].faceId, 21);
  EXPECT_TRUE(engine().getClusterFeature(nullptr, 5).empty());
  EXPECT_EQ(engine().faces.size(), 3u);  // the two-argument form checks first
  EXPECT_TRUE(engine().getClusterFeature(nullptr, 5, {}, &rep).empty());
  EXPECT_TRUE(engine().faces.empty());  // the four-argument form resets first
  Load({10, 11});
  EXPECT_EQ(engine().getClusterFeature(features.data(), 1), taggedFeature(12));
  EXPECT_TRUE(engine().faces.empty());  // one feature: returned, not loaded
}

}  // namespace
