#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "support/ready_handle.h"
#include "clustering/face_clustering_system.h"

namespace {

using testing_support::pairKernel;
using Members = std::map<int, Vec<int>>;

struct Engine : FaceClusteringSystem {
  explicit Engine(std::vector<Vec<float>> similarities) {
    kernel = similarities;
    faces.resize(kernel.size());
    for (Face& face : faces) face.clusterId = 77;
  }
  Members ClusterMembers() const {
    Members members;
    for (const auto& [id, cluster] : clusters) members[id] = cluster.members;
    return members;
  }
};

TEST(Refinement, PruningExaminesEachFaceOnceInOrder) {
  // 0: a pair at 0.85; 1: a pair at exactly 0.9; 2: one face; 3: A, B, C with
  // A-B 0.9 and C far from both; 4: X, Y, Z, W where weak Y leaves after X
  // was kept, although X fails without Y. Face 12 is left out of the map.
  Engine e(pairKernel(13, 0.1f,
                      {{0, 1, 0.85f},
                       {2, 3, 0.9f},
                       {5, 6, 0.9f},
                       {8, 9, 0.9f},
                       {8, 10, 0.65f},
                       {8, 11, 0.65f},
                       {9, 10, 0.3f},
                       {9, 11, 0.3f},
                       {10, 11, 0.9f}}));
  Vec<int> labels = {0, 0, 1, 1, 2, 3, 3, 3, 4, 4, 4, 4, -2};
  e.refineClustering(labels, Mat<int>(), 0.7f, false);
  const Vec<int> expected = {-1, -1, 0, 0, -1, -1, -1, -1, 1, -1, 1, 1, -2};
  EXPECT_EQ(labels, expected);
  EXPECT_EQ(e.ClusterMembers(),
            (Members{{-1, {0, 1, 4, 5, 6, 7, 9}}, {0, {2, 3}}, {1, {8, 10, 11}}}));
  EXPECT_EQ(e.clusterCount, 3);
  EXPECT_EQ(e.clusters.at(-1).id, -1);
  EXPECT_EQ(e.clusters.at(1).id, 1);
  for (int i = 0; i < 13; ++i) EXPECT_EQ(e.faces[i].clusterId, i == 12 ? 77 : expected[i]);
}

// A face stays when its best similarity to the rest reaches the threshold
// plus 0.05 exactly, and leaves one float below it.
TEST(Refinement, PruningKeepsAFaceWhoseBestPairIsExactlyTheBound) {
  const float bound = 0.7f + 0.05f;
  for (const float best : {bound, std::nextafter(bound, 0.0f)}) {
    Engine e(pairKernel(4, 0.9f, {{0, 1, best}, {0, 2, best}, {0, 3, best}}));
    Vec<int> labels = {0, 0, 0, 0};
    e.refineClustering(labels, Mat<int>(), 0.7f, false);
    EXPECT_EQ(labels, (best == bound ? Vec<int>{0, 0, 0, 0} : Vec<int>{-1, 0, 0, 0})) << best;
  }
}

TEST(Refinement, RecoversInterleavedBlocksFromOneCluster) {
  // Faces 0, 2, 4, 6 and 1, 3, 5 at 0.9 inside, 0.3 across; face 7 at 0.3.
  std::vector<Vec<float>> k = pairKernel(8, 0.3f);
  for (int i = 0; i < 7; ++i) {
    for (int j = 0; j < 7; ++j) k[i][j] = i == j ? 1.0f : (i % 2 == j % 2 ? 0.9f : 0.3f);
  }
  Engine e(k);
  Vec<int> labels(8);
  e.refineClustering(labels, Mat<int>(), 0.7f, true);
  EXPECT_EQ(labels, Vec<int>({0, 1, 0, 1, 0, 1, 0, -1}));
  EXPECT_EQ(e.ClusterMembers(), (Members{{-1, {7}}, {0, {0, 2, 4, 6}}, {1, {1, 3, 5}}}));
}

}  // namespace
