// The library's plain renderings (what 32-bit ARM runs) against the ones this
// machine's CPU picks, on one machine: the same sums, labels, clusters and
// log lines, bit for bit. The kernels mix people-like blocks with the exact
// threshold values, their float neighbours, ties, NaN and unusual diagonals;
// the labels hold singletons, empty ids, unclustered (-1) and left-out (-2)
// faces. Without AVX2 both renderings are one and these pass trivially.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "clustering/kernel_block.h"
#include "evaluation/random.h"
#include "numeric/kmeans.h"
#include "platform/fast_paths.h"
#include "support/log_capture.h"

namespace {

using Kernel = std::vector<Vec<float>>;

using evaluation::Random;

// Uniform in [0, 1), 24 bits.
float unit(Random& random) { return static_cast<float>(random() >> 8) / (1 << 24); }

// f() with the plain renderings forced, then f() with the CPU's own.
template <typename F>
auto plainAndDispatched(F f) {
  detail::forcePlainRenderings(true);
  auto plain = f();
  detail::forcePlainRenderings(false);
  return std::make_pair(plain, f());
}

// A similarity: mostly near the thresholds the engine compares against, now
// and then below 0 (a comparator score outside [-1, 1]). Coarse: few distinct
// values, so that sums, distances and row minima tie exactly.
float similarity(Random& random, bool samePerson, bool coarse = false) {
  static const float kLevels[] = {0.3f, 0.69f, 0.9f, 1.0f};
  if (coarse) return kLevels[random.below(2) + (samePerson ? 2 : 0)];
  static const float kExact[] = {0.69f, 0.7f, 0.74f, 0.75f, 0.87f, 0.9f, 0.0f, 1.0f, -0.25f};
  const int kind = random.below(4);
  if (kind == 1) return samePerson ? 0.95f : 0.3f;
  if (kind > 1) return samePerson ? 0.6f + 0.4f * unit(random) : 0.8f * unit(random);
  const float exact = kExact[random.below(9)];
  const int side = random.below(3);
  return side == 0 ? exact : std::nextafter(exact, side == 1 ? 0.0f : 2.0f);
}

struct Case {
  Kernel kernel;
  Vec<int> labels;
};

Case randomCase(uint64_t seed) {
  Random random(seed);
  const int n = random.below(36);
  const int people = 1 + random.below(6);
  std::vector<int> person(n);
  for (int& p : person) p = random.below(people);
  Case c;
  c.kernel.assign(n, Vec<float>(n));
  const bool symmetric = random.below(8) != 0;
  const bool coarse = random.below(4) == 0;
  const bool flat = random.below(8) == 0;
  const int nanOneIn = random.below(6) == 0 ? 20 : 0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      const bool same = person[i] == person[j];
      if (j < i && symmetric) {
        c.kernel[i][j] = c.kernel[j][i];
      } else if (i == j) {
        c.kernel[i][i] = random.below(6) == 0 ? similarity(random, true) : 1.0f;
      } else {
        c.kernel[i][j] = similarity(random, same, coarse);
      }
      // Flat people: one value everywhere, so both 2-means centres tie.
      if (flat && same) c.kernel[i][j] = 0.5f;
      if (nanOneIn > 0 && random.below(nanOneIn) == 0) c.kernel[i][j] = NAN;
    }
  }
  // Labels: one cluster, clusters per person, or random ids with gaps.
  const int pattern = random.below(3);
  const int ids = 1 + random.below(n + 1);
  c.labels.resize(n);
  for (int i = 0; i < n; ++i) {
    c.labels[i] = pattern == 0 ? 0 : pattern == 1 ? person[i] : random.below(ids + 2) - 2;
  }
  return c;
}

// Everything a split and a refinement of `c` leave: the split's labels, the
// refined labels, the cluster map (id -> members, each face's cluster id)
// and the log lines.
auto splitAndRefine(const Case& c, float threshold) {
  FaceClusteringSystem engine;
  engine.kernel = c.kernel;
  engine.faces.resize(c.kernel.size());
  Vec<int> split = c.labels, refined = c.labels;
  engine.ClusterSplit(split);
  testing_support::LogCapture log;
  engine.refineClustering(refined, Mat<int>(), threshold, true);
  std::map<int, std::vector<int>> clusters;
  for (const auto& [id, cluster] : engine.clusters) {
    clusters[id].assign(cluster.members.begin(), cluster.members.end());
    clusters[id].push_back(cluster.id);
  }
  std::vector<int> faceClusters;
  for (const auto& face : engine.faces) faceClusters.push_back(face.clusterId);
  return std::make_tuple(split, refined, clusters, engine.clusterCount, faceClusters,
                         log.messages());
}

TEST(RenderingEquivalence, SplitAndRefinement) {
  for (int seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    const Case c = randomCase(seed);
    const auto [plain, dispatched] =
        plainAndDispatched([&] { return splitAndRefine(c, seed % 5 == 0 ? 0.69f : 0.7f); });
    EXPECT_EQ(plain, dispatched);
  }
}

// Uniform values over many magnitudes, so that any other order of the
// additions shows in the bits; index lists with runs of every length.
TEST(RenderingEquivalence, BlockSumsAndTwoMeansMatchThePlainLoops) {
  for (int seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const int n = 1 + random.below(60);
    Kernel kernel(n, Vec<float>(n));
    for (Vec<float>& row : kernel) {
      for (float& x : row) x = unit(random) * static_cast<float>(1 << random.below(20));
    }
    Vec<int> members, seeds;
    for (int i = 0; i < n; ++i) {
      if (random.below(5) != 0) members.push_back(i);
    }
    if (members.empty()) continue;
    for (std::size_t u = 0; u < members.size(); ++u) seeds.push_back(random.below(2));

    // The sums of a plain loop over each row, in list order.
    std::vector<float> rowSums;
    for (int i : members) {
      float sum = 0.0f;
      for (int j : members) sum += kernel[i][j];
      rowSums.push_back(sum);
    }
    // 2-means on the gathered block.
    Mat<float> block(static_cast<int>(members.size()), static_cast<int>(members.size()));
    for (std::size_t u = 0; u < members.size(); ++u) {
      for (std::size_t v = 0; v < members.size(); ++v) block[u][v] = kernel[members[u]][members[v]];
    }
    Vec<int> gathered;
    kmeans(block, 2, seeds, gathered);

    const auto [plain, dispatched] = plainAndDispatched([&] {
      std::vector<detail::Run> runs;
      std::vector<float> sums;
      detail::blockRowSums(kernel, members, runs, sums);
      detail::TwoMeansScratch scratch;
      Vec<int> labels;
      detail::twoMeansOnBlock(kernel, members, seeds, labels, scratch);
      return std::make_pair(sums, labels);
    });
    EXPECT_EQ(plain.first, rowSums);
    EXPECT_EQ(dispatched.first, rowSums);
    EXPECT_EQ(plain.second, gathered);
    EXPECT_EQ(dispatched.second, gathered);
  }
}

}  // namespace
