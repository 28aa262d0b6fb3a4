// The engine's merging, splitting and pruning against their plain reference
// renderings on seeded random kernels: identical labels, cluster maps and
// log lines. The kernels mix people-like blocks with the exact threshold
// values, their float neighbours, ties, NaN and unusual diagonals; the label
// vectors hold singletons, empty ids, unclustered (-1) and left-out (-2)
// faces.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "clustering/cluster_merge.h"
#include "clustering/face_clustering_system.h"
#include "clustering/kernel_block.h"
#include "reference/reference_clustering.h"
#include "support/log_capture.h"

namespace {

using Kernel = std::vector<Vec<float>>;

// xorshift64*: the same cases on every platform and standard library.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 2654435761u + 1) {}
  uint32_t next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return static_cast<uint32_t>((state_ * 2685821657736338717ull) >> 32);
  }
  int below(int n) { return static_cast<int>(next() % static_cast<uint32_t>(n)); }
  float unit() { return static_cast<float>(next() >> 8) / static_cast<float>(1 << 24); }

 private:
  uint64_t state_;
};

// A similarity: mostly near the thresholds the engine compares against, now
// and then below 0 (a comparator score outside [-1, 1]).
float similarity(Random& random, bool samePerson) {
  static const float kExact[] = {0.69f, 0.7f, 0.74f, 0.75f, 0.87f, 0.9f, 0.0f, 1.0f, -0.25f};
  switch (random.below(4)) {
    case 0: {
      const float exact = kExact[random.below(9)];
      const int side = random.below(3);
      return side == 0 ? exact : std::nextafter(exact, side == 1 ? 0.0f : 2.0f);
    }
    case 1:
      return samePerson ? 0.95f : 0.3f;
    default:
      return samePerson ? 0.6f + 0.4f * random.unit() : 0.8f * random.unit();
  }
}

// Few distinct values, so that sums, distances and row minima tie exactly.
float coarseSimilarity(Random& random, bool samePerson) {
  static const float kLevels[] = {0.3f, 0.69f, 0.9f, 1.0f};
  return kLevels[random.below(2) + (samePerson ? 2 : 0)];
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
        c.kernel[i][j] = coarse ? coarseSimilarity(random, same) : similarity(random, same);
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
    if (pattern == 0) {
      c.labels[i] = 0;
    } else if (pattern == 1) {
      c.labels[i] = person[i];
    } else {
      c.labels[i] = random.below(ids + 2) - 2;
    }
  }
  return c;
}

std::map<int, std::vector<int>> clusterMap(const FaceClusteringSystem& engine) {
  std::map<int, std::vector<int>> out;
  for (const auto& [id, cluster] : engine.clusters) {
    EXPECT_EQ(id, cluster.id);
    out[id].assign(cluster.members.begin(), cluster.members.end());
  }
  return out;
}

constexpr int kCases = 400;

TEST(ClusteringEquivalence, MergingMatchesTheReference) {
  for (int seed = 0; seed < kCases; ++seed) {
    SCOPED_TRACE(seed);
    Case c = randomCase(seed);
    if (c.labels.empty()) continue;
    Vec<int> expected = c.labels, actual = c.labels;
    EXPECT_EQ(MergeCluster(Mat<float>(c.kernel), actual),
              reference::mergeCluster(Mat<float>(c.kernel), expected));
    EXPECT_EQ(actual, expected);

    FaceClusteringSystem engine;
    engine.kernel = c.kernel;
    for (bool dropSingletons : {false, true}) {
      expected = actual = c.labels;
      reference::mergeClusters(c.kernel, expected, dropSingletons);
      engine.MergeClusters(actual, dropSingletons);
      EXPECT_EQ(actual, expected);
    }
  }
}

TEST(ClusteringEquivalence, SplittingMatchesTheReference) {
  for (int seed = 0; seed < kCases; ++seed) {
    SCOPED_TRACE(seed);
    Case c = randomCase(seed);
    FaceClusteringSystem engine;
    engine.kernel = c.kernel;
    Vec<int> expected = c.labels, actual = c.labels;
    reference::clusterSplit(c.kernel, expected);
    engine.ClusterSplit(actual);
    EXPECT_EQ(actual, expected);
  }
}

TEST(ClusteringEquivalence, RefinementMatchesTheReference) {
  for (int seed = 0; seed < kCases; ++seed) {
    SCOPED_TRACE(seed);
    Case c = randomCase(seed);
    const bool splitAndMerge = seed % 4 != 0;
    const float threshold = seed % 5 == 0 ? 0.69f : 0.7f;

    std::map<int, std::vector<int>> expectedMap;
    Vec<int> expected = c.labels;
    std::vector<std::string> expectedLog;
    {
      testing_support::LogCapture log;
      reference::refineClustering(c.kernel, expected, threshold, splitAndMerge, expectedMap);
      expectedLog = log.messages();
    }

    FaceClusteringSystem engine;
    engine.kernel = c.kernel;
    engine.faces.resize(c.kernel.size());
    Vec<int> actual = c.labels;
    testing_support::LogCapture log;
    engine.refineClustering(actual, Mat<int>(), threshold, splitAndMerge);
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(clusterMap(engine), expectedMap);
    EXPECT_EQ(engine.clusterCount, static_cast<int>(expectedMap.size()));
    for (std::size_t i = 0; i < engine.faces.size(); ++i) {
      EXPECT_EQ(engine.faces[i].clusterId, actual[i] == -2 ? 0 : actual[i]);
    }
    EXPECT_EQ(log.messages(), expectedLog);
  }
}

TEST(ClusteringEquivalence, BlockRowSumsAddInListOrder) {
  // Uniform values over many magnitudes, so that any other order of the
  // additions shows in the bits; member lists with runs of every length.
  for (int seed = 0; seed < 40; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const int n = 1 + random.below(60);
    Kernel kernel(n, Vec<float>(n));
    for (Vec<float>& row : kernel) {
      for (float& x : row) x = random.unit() * static_cast<float>(1 << random.below(20));
    }
    Vec<int> members;
    for (int i = 0; i < n; ++i) {
      if (random.below(5) != 0) members.push_back(i);
    }
    std::vector<detail::Run> runs;
    std::vector<float> sums;
    detail::blockRowSums(kernel, members, runs, sums);
    ASSERT_EQ(sums.size(), members.size());
    for (std::size_t u = 0; u < members.size(); ++u) {
      float plain = 0.0f;
      for (int j : members) plain += kernel[members[u]][j];
      EXPECT_EQ(sums[u], plain);
    }
  }
}

}  // namespace
