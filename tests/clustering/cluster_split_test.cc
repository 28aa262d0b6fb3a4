#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

using Similarities = std::vector<std::vector<float>>;

// Faces 0..5 in three pairs at 0.85, exactly 0.9 and just below 0.9, an
// unclustered face and a cluster of one; 0.1 across.
Similarities threePairs() {
  Similarities s(8, std::vector<float>(8, 0.1f));
  for (int i = 0; i < 8; ++i) s[i][i] = 1.0f;
  const float pair[3] = {0.85f, 0.9f, std::nextafter(0.9f, 0.0f)};
  for (int p = 0; p < 3; ++p) s[2 * p][2 * p + 1] = s[2 * p + 1][2 * p] = pair[p];
  return s;
}

Vec<int> split(const Similarities& similarities, Vec<int> labels) {
  FaceClusteringSystem engine;
  engine.kernel.assign(similarities.begin(), similarities.end());
  engine.ClusterSplit(labels);
  return labels;
}

TEST(ClusterSplit, PairsBelowPointNineAreCutAndNewIdsFollowTheLargest) {
  // The first face of a cut pair seeds the second group and gets the new id.
  EXPECT_EQ(split(threePairs(), {0, 0, 1, 1, 2, 2, -1, 5}), Vec<int>({6, 0, 1, 1, 7, 2, -1, 5}));
  EXPECT_EQ(split(threePairs(), {-1, -1, -1, -1, -1, -1, -1, -1}), Vec<int>(8, -1));
}

TEST(ClusterSplit, FirstFaceWithALowPairSeedsAndAnUnmovedSplitTakesNoId) {
  // Faces 0..2 at 0.5 everywhere: the mean test fires, but both 2-means
  // centres start equal, every tie goes to group 0 and nothing moves.
  Similarities s(6, std::vector<float>(6, 0.1f));
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) s[i][j] = 0.5f;
  }
  // Faces 3, 4, 5: mean 0.8 passes, but face 4's pair with face 5 is 0.6.
  // Seeding with face 3 instead would cut face 3 off.
  const float b[3][3] = {{1, 0.9f, 0.9f}, {0.9f, 1, 0.6f}, {0.9f, 0.6f, 1}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) s[3 + i][3 + j] = b[i][j];
  }
  EXPECT_EQ(split(s, {0, 0, 0, 1, 1, 1}), Vec<int>({0, 0, 0, 1, 2, 1}));
}

TEST(ClusterSplit, OutOfMemoryKeepsTheSplitsMadeSoFar) {
  const Vec<int> before = {0, 0, 1, 1, 2, 2, -1, 5};
  const Vec<int> afterFirst = {6, 0, 1, 1, 2, 2, -1, 5};
  FaceClusteringSystem engine;
  const Similarities s = threePairs();
  engine.kernel.assign(s.begin(), s.end());
  Vec<int> labels = before;
  const long allocations = alloc_failure::countAllocations([&] { engine.ClusterSplit(labels); });
  int partial = 0;
  for (long nth = 1; nth <= allocations; ++nth) {
    labels = before;
    testing_support::LogCapture log;
    alloc_failure::failNth(nth);
    engine.ClusterSplit(labels);
    ASSERT_TRUE(alloc_failure::fired());
    EXPECT_EQ(log.messages(), std::vector<std::string>{"malloc fail!!!(in ClusterSplit"});
    if (labels == afterFirst)
      ++partial;
    else
      EXPECT_EQ(labels, before);
  }
  EXPECT_GT(partial, 0);
}

}  // namespace
