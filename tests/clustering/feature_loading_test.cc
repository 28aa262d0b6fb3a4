#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::featureKey;
using testing_support::LogCapture;
using testing_support::scripted;
using testing_support::taggedFeature;
using Feature = std::vector<float>;

int someRecognizer;  // the scripted comparator does not look at its object

// Deliberately asymmetric, so that a pair compared the other way round, or
// twice, shows in the kernel.
float asymmetricScore(const float* a, const float* b) { return (a[5] - 0.5f * b[7]) / 2; }

struct Engine {
  Engine() { system.init(&someRecognizer); }
  void Load(const Feature& feature, int faceId) {
    system.loadFeatureVector(const_cast<float*>(feature.data()), faceId);  // read only
  }
  void BuildKernel() {
    Mat<int> unused;
    system.updateKernelwithFeatureMatching(system.featureMats, unused);
  }
  std::vector<Feature> Rows() const {
    return {system.featureMats[0].rows.begin(), system.featureMats[0].rows.end()};
  }
  std::vector<int> FaceIds() const {
    std::vector<int> ids;
    for (const Face& face : system.faces) ids.push_back(face.faceId);
    return ids;
  }
  FaceClusteringSystem system;
};

TEST(FeatureLoading, RowsFacesAndKernelDoNotDependOnLoadOrder) {
  std::mt19937 rng(1234);
  std::vector<Feature> features(12, Feature(960));
  for (Feature& f : features) {
    // Leading elements from {0, 1}: many pairs tie on a prefix.
    for (int k = 0; k < 960; ++k) f[k] = k < 3 ? rng() % 2 : (rng() % 1000) / 1000.0f;
  }
  std::vector<Feature> sorted = features;
  std::sort(sorted.begin(), sorted.end());
  scripted().fallback = asymmetricScore;

  std::vector<int> order = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, firstIds;
  for (int trial = 0; trial < 10; ++trial) {
    for (size_t i = order.size() - 1; i > 0; --i) std::swap(order[i], order[rng() % (i + 1)]);
    scripted().comparisons.clear();
    Engine e;
    for (int index : order) e.Load(features[index], index);
    e.BuildKernel();

    ASSERT_EQ(e.Rows(), sorted);
    if (trial == 0) firstIds = e.FaceIds();
    EXPECT_EQ(e.FaceIds(), firstIds);
    const std::vector<Vec<float>>& k = e.system.kernel;
    size_t call = 0;
    for (int i = 0; i < 12; ++i) {
      EXPECT_EQ(features[e.FaceIds()[i]], sorted[i]);
      EXPECT_EQ(k[i][i], 1.0f);
      for (int j = i + 1; j < 12; ++j, ++call) {
        ASSERT_LT(call, scripted().comparisons.size());
        const auto& c = scripted().comparisons[call];
        EXPECT_EQ(c.first, featureKey(sorted[i]));
        EXPECT_EQ(c.second, featureKey(sorted[j]));
        EXPECT_NE(c.firstPointer, e.system.featureMats[0][i].data());
        EXPECT_EQ(k[i][j], (asymmetricScore(sorted[i].data(), sorted[j].data()) + 1) * 0.5f);
        EXPECT_EQ(k[j][i], k[i][j]);
      }
    }
    EXPECT_EQ(call, scripted().comparisons.size());
  }
}

TEST(FeatureLoading, EqualRowsAreScannedPastNotStoppedAt) {
  const Feature a = taggedFeature(1), e = taggedFeature(2), g = taggedFeature(3);
  Engine identical;
  for (auto [feature, id] : {std::pair{g, 30}, {e, 21}, {a, 10}, {e, 22}})
    identical.Load(feature, id);
  EXPECT_EQ(identical.FaceIds(), (std::vector<int>{10, 21, 22, 30}));

  // An all-NaN row compares equal to every row, so it can sit after a greater
  // one: that greater row is then exchanged with it, not with the new row.
  Engine nan;
  nan.Load(g, 1);
  nan.Load(Feature(960, std::numeric_limits<float>::quiet_NaN()), 2);
  nan.Load(a, 3);
  EXPECT_EQ(nan.FaceIds(), (std::vector<int>{2, 1, 3}));
}

TEST(FeatureLoading, KernelOfNoFaceAndOfOneFace) {
  Engine e;
  e.system.kernel.assign(3, Vec<float>(3, 0.5f));
  e.BuildKernel();
  EXPECT_TRUE(e.system.kernel.empty());
  e.Load(taggedFeature(0), 7);
  e.BuildKernel();
  EXPECT_EQ(e.system.kernel, (std::vector<Vec<float>>{{1.0f}}));
  EXPECT_TRUE(scripted().comparisons.empty());
}

TEST(FeatureLoading, OutOfMemoryWhileLoadingLeavesTheDocumentedState) {
  auto twoFaces = [] {
    auto e = std::make_unique<Engine>();
    e->Load(taggedFeature(1), 1);
    e->Load(taggedFeature(3), 3);
    return e;
  };
  const Feature third = taggedFeature(2);
  long allocations;
  {
    auto e = twoFaces();
    allocations = alloc_failure::countAllocations([&] { e->Load(third, 2); });
  }
  bool zerosLogged = false, faceLogged = false;
  for (long nth = 1; nth <= allocations; ++nth) {
    auto e = twoFaces();
    LogCapture log;
    alloc_failure::failNth(nth);
    try {
      e->Load(third, 2);
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(log.messages().empty());  // not one of the places that catch
    }
    alloc_failure::disarm();
    if (log.contains("malloc fail!!!(zeros in loadFeatureVector")) {
      zerosLogged = true;
      EXPECT_EQ(e->Rows(), (std::vector<Feature>{taggedFeature(1), taggedFeature(3)}));
      EXPECT_EQ(e->FaceIds(), (std::vector<int>{1, 3}));
    } else if (log.contains("malloc fail!!!(add face in loadFeatureVector")) {
      faceLogged = true;
      // The row stays appended, unsorted, without its face.
      EXPECT_EQ(e->Rows(), (std::vector<Feature>{taggedFeature(1), taggedFeature(3), third}));
      EXPECT_EQ(e->FaceIds(), (std::vector<int>{1, 3}));
    }
  }
  EXPECT_TRUE(zerosLogged);
  EXPECT_TRUE(faceLogged);
}

TEST(FeatureLoading, OutOfMemoryWhileSizingTheKernelComparesNothing) {
  Engine e;
  for (int tag = 0; tag < 3; ++tag) e.Load(taggedFeature(tag), tag);
  const long allocations = alloc_failure::countAllocations([&] { e.BuildKernel(); });
  ASSERT_GT(allocations, 0);
  scripted().comparisons.clear();
  // Every allocation of the kernel build is in sizing the kernel.
  for (long nth = 1; nth <= allocations; ++nth) {
    std::vector<Vec<float>>().swap(e.system.kernel);  // so that sizing allocates again
    LogCapture log;
    alloc_failure::failNth(nth);
    e.BuildKernel();
    ASSERT_TRUE(alloc_failure::fired());
    EXPECT_EQ(log.messages(), std::vector<std::string>{"malloc fail!!!(in updateKernel"});
    EXPECT_TRUE(scripted().comparisons.empty());
  }
}

}  // namespace
