#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

// Labels of `kernel`, written over a stale label vector.
Vec<int> clusterKernel(const std::vector<Vec<float>>& kernel, float threshold) {
  FaceClusteringSystem engine;
  engine.kernel = kernel;
  Vec<int> labels = {42, 42, 42, 42, 42, 42, 42, 42};
  engine.clustering(labels, threshold);
  EXPECT_EQ(engine.kernel, kernel);  // only the restricted copy is thresholded
  return labels;
}

TEST(InitialClustering, ThresholdSetsFacesAsideAndTheFixedLevelGroups) {
  const std::vector<Vec<float>> three = {{1, .8f, .25f}, {.8f, 1, .75f}, {.25f, .75f, 1}};
  // Faces 0, 2, 5 are one person, faces 1, 4 another; face 3 resembles nobody.
  const int person[] = {0, 1, 0, 3, 1, 0};
  std::vector<Vec<float>> six(6, Vec<float>(6));
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) six[i][j] = i == j ? 1 : person[i] == person[j] ? .875f : .25f;
  }
  const struct {
    std::vector<Vec<float>> kernel;
    float threshold;
    Vec<int> labels;
  } cases[] = {
      {{}, 0.7f, {}},
      {{{1}}, 0.5f, {-1}},  // its best similarity is 0
      {{{1}}, 0.0f, {0}},
      {three, 0.85f, {-1, -1, -1}},
      {three, 0.8f, {0, 0, -1}},
      // Face 2 is kept at its best similarity exactly; row 0 claims only
      // faces 0 and 1, so it is a group, and a cluster, of its own.
      {three, 0.75f, {0, 0, 1}},
      // Kept at 0.5, but 0.625 is below the fixed grouping level of 0.71.
      {{{1, .625f}, {.625f, 1}}, 0.5f, {0, 1}},
      {six, 0.7f, {0, 1, 0, -1, 1, 0}},  // labels go back to the kept faces
  };
  for (const auto& c : cases) EXPECT_EQ(clusterKernel(c.kernel, c.threshold), c.labels);
}

TEST(InitialClustering, EveryAllocationFailureIsSurvived) {
  const std::vector<Vec<float>> kernel = {{1, .875f, .25f}, {.875f, 1, .25f}, {.25f, .25f, 1}};
  const long count = alloc_failure::countAllocations([&] { clusterKernel(kernel, 0.0f); });
  std::vector<std::string> spectralFailures;
  for (long k = 1; k <= count; ++k) {
    testing_support::LogCapture log;
    alloc_failure::failNth(k);
    try {
      const Vec<int> labels = clusterKernel(kernel, 0.0f);
      if (log.messages().at(0).rfind("sClustering - ", 0) != 0) continue;
      spectralFailures.push_back(log.messages().at(0));
      EXPECT_EQ(labels, (Vec<int>{-1, -1, -1}));  // every face, kept or not
    } catch (const std::bad_alloc&) {  // the copies, embedding and k-means are not guarded
    }
  }
  EXPECT_EQ(spectralFailures,
            (std::vector<std::string>{
                "sClustering - L malloc fail!!!", "sClustering - D malloc fail!!!",
                "sClustering - V malloc fail!!!", "sClustering - E malloc fail!!!"}));
}

}  // namespace
