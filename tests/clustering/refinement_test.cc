#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <new>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/alloc_failure.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using Similarities = std::vector<std::vector<float>>;
using Members = std::map<int, std::vector<int>>;

int someRecognizer;

// Similarities `across` everywhere, 1 on the diagonal, then `pairs` set.
Similarities similarities(int n, float across, std::vector<std::vector<float>> pairs) {
  Similarities s(n, std::vector<float>(n, across));
  for (int i = 0; i < n; ++i) s[i][i] = 1.0f;
  for (const auto& p : pairs) s[int(p[0])][int(p[1])] = s[int(p[1])][int(p[0])] = p[2];
  return s;
}

struct Refinement {
  explicit Refinement(const Similarities& s) {
    engine.kernel.assign(s.begin(), s.end());
    engine.faces.resize(s.size());
    for (Face& face : engine.faces) face.clusterId = 77;
  }
  void Run(Vec<int>& labels, bool splitAndMerge) {
    engine.refineClustering(labels, Mat<int>(), 0.7f, splitAndMerge);
  }
  Members ClusterMembers() const {
    Members members;
    for (const auto& [id, cluster] : engine.clusters) {
      EXPECT_EQ(cluster.id, id);
      members[id] = cluster.members;
    }
    return members;
  }
  FaceClusteringSystem engine;
};

TEST(Refinement, PruningExaminesFacesOnceInOrder) {
  // Clusters: 0 a pair at 0.85; 1 a pair at exactly 0.9; 2 one face; 3 faces A, B,
  // C with A-B 0.9 and C at 0.1 to both; 4 faces X, Y, Z, W where Y is
  // weak and X, examined before Y leaves, would fail without Y.
  Refinement r(similarities(13, 0.1f,
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
  r.Run(labels, false);
  const Vec<int> expected = {-1, -1, 0, 0, -1, -1, -1, -1, 1, -1, 1, 1, -2};
  EXPECT_EQ(labels, expected);
  EXPECT_EQ(r.ClusterMembers(),
            (Members{{-1, {0, 1, 4, 5, 6, 7, 9}}, {0, {2, 3}}, {1, {8, 10, 11}}}));
  EXPECT_EQ(r.engine.clusterCount, 3);
  for (int i = 0; i < 13; ++i) EXPECT_EQ(r.engine.faces[i].clusterId, i == 12 ? 77 : expected[i]);

  Vec<int> unclustered = {-1, -1, -1};
  Refinement none(similarities(3, 0.9f, {}));
  none.Run(unclustered, true);
  EXPECT_EQ(none.ClusterMembers(), (Members{{-1, {0, 1, 2}}}));
  EXPECT_EQ(none.engine.clusterCount, 1);
}

TEST(Refinement, RecoversInterleavedBlocksFromOneClusterWhateverTheLoadOrder) {
  // Block A: tags 0, 2, 4, 6; block B: 1, 3, 5; tag 7 alike to nobody.
  Similarities s(8, std::vector<float>(8, 0.3f));
  for (int i = 0; i < 8; ++i) {
    for (int j = 0; j < 8; ++j) {
      if (i == j || (i < 7 && j < 7 && i % 2 == j % 2)) s[i][j] = i == j ? 1.0f : 0.9f;
    }
  }
  const std::vector<std::vector<float>> features = testing_support::scriptSimilarities(s);
  for (const std::vector<int>& order :
       {std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}, std::vector<int>{5, 7, 1, 6, 0, 3, 4, 2}}) {
    FaceClusteringSystem engine;
    engine.init(&someRecognizer);
    for (int tag : order) engine.loadFeatureVector(const_cast<float*>(features[tag].data()), tag);
    Mat<int> unused;
    engine.updateKernelwithFeatureMatching(engine.featureMats, unused);
    Vec<int> labels(8);
    engine.refineClustering(labels, unused, 0.7f, true);
    EXPECT_EQ(labels, Vec<int>({0, 1, 0, 1, 0, 1, 0, -1}));
    ASSERT_EQ(engine.clusters.size(), 3u);
    EXPECT_EQ(engine.clusters[0].members, Vec<int>({0, 2, 4, 6}));
    EXPECT_EQ(engine.clusters[-1].members, Vec<int>({7}));
  }
}

TEST(Refinement, OutOfMemoryWhilePruningKeepsTheOldClusterMap) {
  const Similarities s = testing_support::blockSimilarities({3, 3}, 0.9f, 0.2f);
  auto withOldMap = [&] {
    auto r = std::make_unique<Refinement>(s);
    r->engine.clusters[5].init(5);
    r->engine.clusters[5].members = {42};
    r->engine.clusterCount = 1;
    return r;
  };
  auto r = withOldMap();
  Vec<int> labels = {0, 0, 0, 1, 1, 1};
  const long allocations = alloc_failure::countAllocations([&] { r->Run(labels, false); });
  int logged = 0;
  for (long nth = 1; nth <= allocations; ++nth) {
    auto fresh = withOldMap();
    labels = {0, 0, 0, 1, 1, 1};
    testing_support::LogCapture log;
    alloc_failure::failNth(nth);
    try {
      fresh->Run(labels, false);
    } catch (const std::bad_alloc&) {
      continue;  // rebuilding the map is not one of the places that catch
    }
    ASSERT_TRUE(alloc_failure::fired());
    ++logged;
    EXPECT_EQ(log.messages(),
              std::vector<std::string>{"malloc fail!!!(add members vector in refineClustering"});
    EXPECT_EQ(fresh->ClusterMembers(), (Members{{5, {42}}}));
    EXPECT_EQ(fresh->engine.clusterCount, 1);
  }
  EXPECT_GT(logged, 0);
}

}  // namespace
