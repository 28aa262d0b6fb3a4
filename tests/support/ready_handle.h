// A ready handle and a vocabulary to speak of it: faces are tagged features
// (face id = tag), people are told apart by the scripted comparator, and a
// result is read by cluster id. Engine tests reach the engine behind it.
#ifndef XVKFC_TESTS_SUPPORT_READY_HANDLE_H_
#define XVKFC_TESTS_SUPPORT_READY_HANDLE_H_

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "interface/face_recognition.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace testing_support {

using Ids = std::vector<int>;
// A result as the application reads it: cluster ids and members, in list order.
using Listing = std::vector<std::pair<int, Ids>>;

// Scripts the kernel similarity of two tagged features (exact from 0.25 up).
inline void Similar(int tagA, int tagB, float similarity) {
  scripted().setScore(taggedFeature(tagA), taggedFeature(tagB), 2.0f * similarity - 1.0f);
}

// n faces: 1 on the diagonal, `across` elsewhere, then each {i, j, s} of
// `pairs` set both ways.
inline std::vector<Vec<float>> pairKernel(int n, float across,
                                          std::vector<std::tuple<int, int, float>> pairs = {}) {
  std::vector<Vec<float>> k(n, Vec<float>(n, across));
  for (int i = 0; i < n; ++i) k[i][i] = 1.0f;
  for (auto [i, j, s] : pairs) k[i][j] = k[j][i] = s;
  return k;
}

// Tags with the same tens digit are one person (similarity 0.95), others 0.3,
// unless a test scripts a pair with Similar().
class ReadyHandle : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
    scripted().fallback = tensDigitPeople;
  }
  void TearDown() override {
    handle.itf_xvk_releaseClusterInfo(&result);
    handle.itf_xvk_Release();
  }

  void Load(const Ids& tags) {
    for (int tag : tags)
      ASSERT_EQ(handle.itf_xvk_loadFaceFeature(taggedFeature(tag).data(), tag), 1);
  }
  // Loads and computes the kernel, as a run does first (engine tests).
  void LoadKernel(const Ids& tags) {
    Load(tags);
    Mat<int> unused;
    engine().updateKernelwithFeatureMatching(engine().featureMats, unused);
  }
  // Runs with `existing` (null for none) and reads the result into `result`.
  int Run(itf_xvk_clusterinfo* existing = nullptr) {
    const int status = handle.itf_xvk_runClustering(existing);
    Read();
    return status;
  }
  void Read() {
    handle.itf_xvk_releaseClusterInfo(&result);
    handle.itf_xvk_getClusterInfo(&result);
  }
  // Hands the result over as the application's list (the caller releases it).
  itf_xvk_clusterinfo TakeResult() {
    itf_xvk_clusterinfo taken = result;
    result = {0, nullptr};
    return taken;
  }
  Ids ClusterIds() const {
    Ids ids;
    for (int i = 0; i < result.count; ++i) ids.push_back(result.items[i].clusterId);
    return ids;
  }
  Listing Clusters() const {
    Listing listing;
    for (const itf_xvk_clusteritem* c = result.items; c < result.items + result.count; ++c)
      listing.push_back({c->clusterId, Ids(c->faceIds, c->faceIds + c->faceCount)});
    return listing;
  }
  Ids MembersOf(int clusterId) const {
    for (int i = 0; i < result.count; ++i) {
      const itf_xvk_clusteritem& item = result.items[i];
      if (item.clusterId == clusterId) return Ids(item.faceIds, item.faceIds + item.faceCount);
    }
    return {};
  }
  FaceClusteringSystem& engine() { return *handle.engine; }

  FaceRecognition handle;
  itf_xvk_clusterinfo result = {0, nullptr};
};

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_READY_HANDLE_H_
