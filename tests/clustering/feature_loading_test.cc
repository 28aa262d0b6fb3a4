#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "clustering/face_clustering_system.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::scripted;
using testing_support::taggedFeature;
using Feature = std::vector<float>;

int someRecognizer;  // the scripted comparator ignores its object

struct Engine : FaceClusteringSystem {
  Engine() { init(&someRecognizer); }
  void Load(const Feature& f, int id) { loadFeatureVector(const_cast<float*>(f.data()), id); }
  // Face ids in row order, then the number of rows.
  Vec<int> IdsAndRows() const {
    Vec<int> ids;
    for (const Face& face : faces) ids.push_back(face.faceId);
    ids.push_back(featureMats[0].rowCount());
    return ids;
  }
  Mat<int> unused;
};

// Asymmetric on purpose: a pair compared the other way round shows.
float score(const float* a, const float* b) { return (a[5] - 0.5f * b[7]) / 2; }

TEST(FeatureLoading, RowsFacesAndKernelDoNotDependOnLoadOrder) {
  std::mt19937 rng(1234);
  std::vector<Feature> features(12, Feature(960));
  for (Feature& f : features) {  // prefixes from {0, 1}: many ties decided further in
    for (int k = 0; k < 960; ++k) f[k] = k < 3 ? rng() % 2 : (rng() % 1000) / 1000.0f;
  }
  std::vector<Feature> sorted = features;
  std::sort(sorted.begin(), sorted.end());
  scripted().fallback = score;
  std::vector<int> order = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  for (int trial = 0; trial < 10; ++trial) {
    for (size_t i = 11; i > 0; --i) std::swap(order[i], order[rng() % (i + 1)]);
    scripted().comparisons.clear();
    Engine e;
    for (int index : order) e.Load(features[index], index);
    e.updateKernelwithFeatureMatching(e.featureMats, e.unused);
    auto call = scripted().comparisons.begin();  // each pair once, lower row first, on copies
    for (int i = 0; i < 12; ++i) {
      EXPECT_EQ(features[e.faces[i].faceId], sorted[i]);
      EXPECT_EQ(e.kernel[i][i], 1.0f);
      for (int j = i + 1; j < 12; ++j, ++call) {
        ASSERT_EQ(std::pair(call->first, call->second),
                  std::pair(testing_support::featureKey(sorted[i]),
                            testing_support::featureKey(sorted[j])));
        EXPECT_NE(call->firstPointer, e.featureMats[0][i].data());
        EXPECT_EQ(e.kernel[i][j], (score(sorted[i].data(), sorted[j].data()) + 1) * 0.5f);
        EXPECT_EQ(e.kernel[j][i], e.kernel[i][j]);
      }
    }
    EXPECT_EQ(call, scripted().comparisons.end());
  }
}

TEST(FeatureLoading, EqualRowsAreScannedPastNotStoppedAt) {
  const Feature a = taggedFeature(1), e = taggedFeature(2), g = taggedFeature(3);
  Engine same, nan;
  for (auto [f, id] : {std::pair{g, 30}, {e, 21}, {a, 10}, {e, 22}}) same.Load(f, id);
  EXPECT_EQ(same.IdsAndRows(), Vec<int>({10, 21, 22, 30, 4}));
  // An all-NaN row equals every row, so it can follow a greater one; that
  // greater row is then exchanged with it, not with the new row.
  for (auto [f, id] : {std::pair{g, 1}, {Feature(960, NAN), 2}, {a, 3}}) nan.Load(f, id);
  EXPECT_EQ(nan.IdsAndRows(), Vec<int>({2, 1, 3, 3}));
}

// A reset that ran out of memory leaves no feature matrix; loading makes one.
TEST(FeatureLoading, ALoadAfterAFailedResetMakesTheFeatureMatrix) {
  Engine reset;
  reset.featureMats.clear();
  for (int tag : {4, 1}) reset.Load(taggedFeature(tag), tag);
  EXPECT_EQ(reset.IdsAndRows(), Vec<int>({1, 4, 2}));
}

}  // namespace
