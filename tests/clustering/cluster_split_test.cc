#include <gtest/gtest.h>

#include <cmath>

#include "clustering/face_clustering_system.h"
#include "support/ready_handle.h"

namespace {

TEST(ClusterSplit, CutsLooseClustersUnderTheNextIdAboveAllInUse) {
  // Faces 0..5: pairs at 0.85, exactly 0.9 and just below 0.9; a cut pair's
  // first face seeds the second group. Faces 6..8 at 0.5 everywhere: the
  // mean test fires, both 2-means centres start equal, ties go to group 0 and
  // nothing moves. Faces 9..11: mean 0.8, but face 10 is at 0.6 to face 11
  // and seeds (seeding with face 9 would cut 9 off). Face 12 is unclustered,
  // face 13 alone.
  FaceClusteringSystem engine;
  engine.kernel = testing_support::pairKernel(14, 0.1f,
                                              {{0, 1, 0.85f},
                                               {2, 3, 0.9f},
                                               {4, 5, std::nextafter(0.9f, 0.0f)},
                                               {9, 10, 0.9f},
                                               {9, 11, 0.9f},
                                               {10, 11, 0.6f}});
  for (int i = 6; i < 9; ++i) engine.kernel[i] = Vec<float>(14, 0.5f);
  Vec<int> labels = {0, 0, 1, 1, 2, 2, 3, 3, 3, 4, 4, 4, -1, 6};
  engine.ClusterSplit(labels);
  EXPECT_EQ(labels, Vec<int>({7, 0, 1, 1, 8, 2, 3, 3, 3, 4, 9, 4, -1, 6}));
}

}  // namespace
