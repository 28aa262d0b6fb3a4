// Taking over the application's clusters after a run: outliers join them at
// 0.9, and clusters whose features are 0.87 alike are united.
#include <cmath>

#include "support/ready_handle.h"

namespace {

using testing_support::Ids;
using testing_support::Similar;
using testing_support::taggedFeature;

// Faces 10, 11, ... are loaded in rows 0, 1, ...; unscripted pairs have
// similarity 0.5, below every threshold. Application features use tags 50 up.
class MergeExisting : public testing_support::ReadyHandle {
 protected:
  void Start(const Ids& tags) {
    engine().init(handle.recognizer);
    testing_support::scripted().fallback = [](const float*, const float*) { return 0.0f; };
    LoadKernel(tags);
  }
  // A cluster as refinement leaves it: face rows under `key`.
  void RunCluster(int key, const Ids& rows) {
    engine().clusters[key].id = key;
    engine().clusters[key].members = rows;
  }
  static clusterinfo App(int id, const Ids& faceIds, int featureTag = 0) {
    return {id, faceIds, id >= 0 ? taggedFeature(featureTag) : std::vector<float>(), 0};
  }
  Ids Members(int key) { return engine().clusters.at(key).members; }
  Ids Keys() {
    Ids keys;
    for (const auto& entry : engine().clusters) keys.push_back(entry.first);
    return keys;
  }
};

TEST_F(MergeExisting, OutliersJoinEveryClusterFromPointNineAndTheLengthTestDropsTheRest) {
  Start({10, 11, 12});
  RunCluster(-1, {0, 1, 2});
  Similar(10, 50, 0.95f);
  Similar(10, 51, 0.91f);
  Similar(11, 50, 0.9f);
  Similar(12, 51, std::nextafter(0.9f, 0.0f));
  // The second cluster 7 replaces the first.
  engine().mergeInitialCluster(
      {App(3, {900}, 50), App(7, {999}, 51), App(7, {901}, 51), App(-1, {990})});
  EXPECT_EQ(Keys(), (Ids{-1, 0, 1}));
  EXPECT_EQ(Members(0), (Ids{900, 10, 11}));
  EXPECT_EQ(Members(1), (Ids{901, 10}));
  // Face 10 counts twice in `matched`, which is then as long as the outlier
  // list: face 12, which joined nothing, is left out altogether.
  EXPECT_EQ(Members(-1), Ids{990});
  EXPECT_EQ(engine().initialFaceCount, 4);  // the replaced cluster's face counts too
}

TEST_F(MergeExisting, FromPointEightySevenClustersUniteUnderTheLowerKey) {
  for (float similarity : {0.87f, std::nextafter(0.87f, 0.0f)}) {
    const bool united = similarity == 0.87f;
    Start({10, 11, 12, 13});
    RunCluster(0, {2, 3});  // representative: face 12, the earlier of a tie
    RunCluster(1, {0, 1});  // representative: face 10
    Similar(12, 10, similarity);
    engine().mergeInitialCluster({App(-1, {})});
    EXPECT_EQ(Keys(), united ? (Ids{-1, 0}) : (Ids{-1, 0, 1})) << similarity;
    EXPECT_EQ(Members(0), united ? (Ids{12, 13, 10, 11}) : (Ids{12, 13}));
    // A tie between the two features goes to the smaller one, loaded first.
    EXPECT_EQ(engine().clusters.at(0).repFaceId, united ? 10 : 12);
    EXPECT_EQ(engine().clusterCount, 3);  // counted before uniting
  }
}

TEST_F(MergeExisting, LinkingIsOneOrderedPassNotATransitiveUnion) {
  Start({10, 11, 12, 13});
  for (int key = 0; key < 4; ++key) RunCluster(key, {key});
  Similar(10, 12, 0.9f);  // 12 takes id 0
  Similar(11, 13, 0.9f);  // 13 takes id 1
  Similar(12, 13, 0.9f);  // 13 takes id 0; 11 keeps its own
  engine().mergeInitialCluster({App(-1, {})});
  EXPECT_EQ(Members(0), (Ids{10, 12, 13}));
  EXPECT_EQ(Members(1), Ids{11});
}

}  // namespace
