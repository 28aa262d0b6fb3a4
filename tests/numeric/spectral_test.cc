#include "numeric/spectral.h"

#include <gtest/gtest.h>

namespace {

TEST(KernelToLabels, IdentityAllOnesAndTheGreedyPass) {
  Vec<int> labels = {9, 9};
  EXPECT_EQ(kernelToLabels(Mat<float>({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}), labels, 0.5f), 3);
  EXPECT_EQ(labels, (Vec<int>{0, 1, 2}));
  EXPECT_EQ(kernelToLabels(Mat<float>({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}), labels, 0.5f), 1);
  EXPECT_EQ(labels, (Vec<int>{0, 0, 0}));
  // Row 1 is visited when its turn comes, so face 2 (similar to face 1
  // only) opens a group of its own instead of joining face 1's.
  EXPECT_EQ(kernelToLabels(Mat<float>({{1, .9f, 0}, {.9f, 1, .9f}, {0, .9f, 1}}), labels, 0.5f), 2);
  EXPECT_EQ(labels, (Vec<int>{0, 0, 1}));
  // 0.5 is not above 0.5: face 1 is never claimed and keeps label 0, yet its
  // row counts a group.
  EXPECT_EQ(kernelToLabels(Mat<float>({{1, .5f, 0}, {.5f, .5f, 0}, {0, 0, 1}}), labels, 0.5f), 3);
  EXPECT_EQ(labels, (Vec<int>{0, 0, 2}));
}

TEST(SpectralClustering, RecoversTwoBlocksFromAFlawedSeed) {
  // Blocks of one size: only the similarities between faces tell them apart.
  Mat<float> kernel({{1, 1, 1, 0, 0, 0},
                     {1, 1, 1, 0, 0, 0},
                     {1, 1, 1, 0, 0, 0},
                     {0, 0, 0, 1, 1, 1},
                     {0, 0, 0, 1, 1, 1},
                     {0, 0, 0, 1, 1, 1}});
  Vec<int> seed = {1, 1, 0, 0, 0, 0}, labels;  // face 2 seeded with the other block
  EXPECT_EQ(spectralClustering(kernel, 2, seed, labels), 1);
  EXPECT_EQ(labels, (Vec<int>{1, 1, 1, 0, 0, 0}));
}

TEST(SpectralClustering, UsesTheDegreeNormalisedKernel) {
  // Third largest eigenvalue after normalisation: the pair's 0.2 / 1.8, above
  // the triple's 0.25 / 2.5, so faces 0 and 1 are parted. The raw kernel
  // would rank 0.25 above 0.2 and part the triple.
  Mat<float> kernel({{1, .8f, 0, 0, 0},
                     {.8f, 1, 0, 0, 0},
                     {0, 0, 1, .75f, .75f},
                     {0, 0, .75f, 1, .75f},
                     {0, 0, .75f, .75f, 1}});
  Vec<int> seed = {0, 1, 2, 2, 2}, labels;
  EXPECT_EQ(spectralClustering(kernel, 3, seed, labels), 1);
  EXPECT_EQ(labels, seed);
}

}  // namespace
