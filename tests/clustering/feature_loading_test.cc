#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/alloc_failure.h"
#include "support/log_capture.h"
#include "support/ready_handle.h"

namespace {

int someRecognizer;  // init only stores the pointer

// A null recognizer changes nothing; otherwise init resets to the empty
// bucket, and running out of memory on the feature matrix reset (its last
// allocation) is logged after the other resets were done.
TEST(FaceClusteringSystemInit, ResetsToTheUnclusteredBucketUnlessTheRecognizerIsNull) {
  FaceClusteringSystem engine;
  const long allocations = alloc_failure::countAllocations([&] { engine.init(&someRecognizer); });
  for (int outcome : {-1, 0, 1}) {  // null recognizer, out of memory, done
    engine.faces.push_back(Face());
    engine.kernel.assign(1, Vec<float>(1, 1.0f));
    engine.clusters[4].members = {0};
    engine.clusterCount = 2;
    testing_support::LogCapture log;
    if (outcome == 0) alloc_failure::failNth(allocations);
    EXPECT_EQ(engine.init(outcome < 0 ? nullptr : &someRecognizer), outcome < 0 ? 0 : outcome);
    EXPECT_EQ(engine.faces.empty() && engine.kernel.empty() && engine.clusterCount == 0, outcome >= 0);
    EXPECT_EQ(engine.clusters.count(4), outcome < 0 ? 1u : 0u);
    if (outcome < 0) continue;
    EXPECT_TRUE(engine.clusters.at(-1).id == -1 && engine.clusters.at(-1).members.empty());
    EXPECT_EQ(engine.featureMats.size(), outcome == 0 ? 0u : 1u);
    EXPECT_EQ(log.messages(), std::vector<std::string>(1 - outcome, "malloc fail!!!(in init()"));
  }
}

using testing_support::scripted;
using testing_support::taggedFeature;
using Feature = std::vector<float>;

class FeatureLoading : public testing_support::ReadyHandle {
 protected:
  void Load(const std::vector<std::pair<Feature, int>>& faces) {
    for (auto [f, id] : faces) engine().loadFeatureVector(f.data(), id);
  }
  // Face ids in row order, then the number of rows.
  Vec<int> IdsAndRows() {
    Vec<int> ids;
    for (const Face& face : engine().faces) ids.push_back(face.faceId);
    ids.push_back(engine().featureMats[0].rowCount());
    return ids;
  }
};

// Asymmetric on purpose: a pair compared the other way round shows.
float score(const float* a, const float* b) { return (a[5] - 0.5f * b[7]) / 2; }

TEST_F(FeatureLoading, RowsFacesAndKernelDoNotDependOnLoadOrder) {
  std::mt19937 rng(1234);
  std::vector<Feature> features(12, Feature(960)), sorted;
  for (Feature& f : features) {  // prefixes from {0, 1}: many ties decided further in
    for (int k = 0; k < 960; ++k) f[k] = k < 3 ? rng() % 2 : (rng() % 1000) / 1000.0f;
  }
  sorted = features;
  std::sort(sorted.begin(), sorted.end());
  scripted().fallback = score;
  std::vector<int> order = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  for (int trial = 0; trial < 10; ++trial) {
    std::shuffle(order.begin(), order.end(), rng);
    engine().init(handle.recognizer);
    for (int index : order) Load({{features[index], index}});
    scripted().comparisons.clear();
    Mat<int> unused;
    engine().updateKernelwithFeatureMatching(engine().featureMats, unused);
    auto call = scripted().comparisons.begin();  // each pair once, lower row first, on copies
    for (int i = 0; i < 12; ++i) {
      EXPECT_EQ(features[engine().faces[i].faceId], sorted[i]);
      EXPECT_EQ(engine().kernel[i][i], 1.0f);
      for (int j = i + 1; j < 12; ++j, ++call) {
        ASSERT_EQ(std::pair(call->first, call->second),
                  std::pair(testing_support::featureKey(sorted[i]),
                            testing_support::featureKey(sorted[j])));
        EXPECT_NE(call->firstPointer, engine().featureMats[0][i].data());
        EXPECT_EQ(engine().kernel[i][j], (score(sorted[i].data(), sorted[j].data()) + 1) * 0.5f);
        EXPECT_EQ(engine().kernel[j][i], engine().kernel[i][j]);
      }
    }
    EXPECT_EQ(call, scripted().comparisons.end());
  }
}

TEST_F(FeatureLoading, EqualRowsAreScannedPastNotStoppedAt) {
  const Feature a = taggedFeature(1), e = taggedFeature(2), g = taggedFeature(3);
  Load({{g, 30}, {e, 21}, {a, 10}, {e, 22}});
  EXPECT_EQ(IdsAndRows(), Vec<int>({10, 21, 22, 30, 4}));
  // An all-NaN row equals every row, so it can follow a greater one; that
  // greater row is then exchanged with it, not with the new row.
  engine().init(handle.recognizer);
  Load({{g, 1}, {Feature(960, NAN), 2}, {a, 3}});
  EXPECT_EQ(IdsAndRows(), Vec<int>({2, 1, 3, 3}));
  // A reset that ran out of memory leaves no feature matrix; loading makes one.
  engine().init(handle.recognizer);
  engine().featureMats.clear();
  Load({{taggedFeature(4), 4}, {a, 1}});
  EXPECT_EQ(IdsAndRows(), Vec<int>({1, 4, 2}));
}

}  // namespace
