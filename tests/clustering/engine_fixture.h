// A fixture that speaks the engine's language: faces are tagged features
// (face id 100 + tag, row = rank of the tag), similarities are scripted per
// pair, and clusters are set or read by key.
#ifndef XVKFC_TESTS_CLUSTERING_ENGINE_FIXTURE_H_
#define XVKFC_TESTS_CLUSTERING_ENGINE_FIXTURE_H_

#include <gtest/gtest.h>

#include <vector>

#include "FRecogInterface.h"
#include "clustering/face_clustering_system.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

class EngineTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(engine.init(&comparator), 1); }

  static std::vector<float> Feature(int tag) { return testing_support::taggedFeature(tag); }
  // Similarity of two tagged features in the kernel; exact from 0.25 up.
  static void Similar(int tagA, int tagB, float similarity) {
    testing_support::scripted().setScore(Feature(tagA), Feature(tagB), 2.0f * similarity - 1.0f);
  }
  void Load(const std::vector<int>& tags) {
    for (int tag : tags) engine.loadFeatureVector(Feature(tag).data(), 100 + tag);
    Mat<int> unused;
    engine.updateKernelwithFeatureMatching(engine.featureMats, unused);
  }
  // A cluster as refinement leaves it: face rows under `key`.
  void RunCluster(int key, const std::vector<int>& rows) {
    engine.clusters[key].id = key;
    engine.clusters[key].members = rows;
  }
  static clusterinfo App(int id, const std::vector<int>& faceIds, int featureTag = 0) {
    return {id, faceIds, id >= 0 ? Feature(featureTag) : std::vector<float>(), 0};
  }
  std::vector<int> Members(int key) const { return engine.clusters.at(key).members; }
  std::vector<int> Keys() const {
    std::vector<int> keys;
    for (const auto& entry : engine.clusters) keys.push_back(entry.first);
    return keys;
  }

  CFRecogInterface comparator;
  FaceClusteringSystem engine;
};

#endif  // XVKFC_TESTS_CLUSTERING_ENGINE_FIXTURE_H_
