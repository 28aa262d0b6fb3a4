#include "clustering/face_clustering_system.h"

#include <gtest/gtest.h>

#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

int someRecognizer;  // init only stores the pointer

// Puts a little of everything into an engine, as loading and a run would.
void dirty(FaceClusteringSystem& engine) {
  engine.faces.push_back(Face());
  engine.featureMats.assign(2, Mat<float>(1, 960));
  engine.kernel.assign(1, Vec<float>(1, 1.0f));
  engine.clusters[4].members = {0};
  engine.clusterCount = 2;
}

// A null recognizer changes nothing; otherwise init resets to the empty
// bucket, and running out of memory on the feature matrix reset (its last
// allocation) is logged after the other resets were done.
TEST(FaceClusteringSystemInit, ResetsToTheUnclusteredBucketUnlessTheRecognizerIsNull) {
  FaceClusteringSystem engine;
  const long allocations = alloc_failure::countAllocations([&] { engine.init(&someRecognizer); });
  dirty(engine);
  EXPECT_EQ(engine.init(nullptr), 0);
  EXPECT_EQ(engine.faces.size(), 1u);
  EXPECT_EQ(engine.clusters.size(), 2u);

  for (bool outOfMemory : {false, true}) {
    dirty(engine);
    testing_support::LogCapture log;
    if (outOfMemory) alloc_failure::failNth(allocations);
    EXPECT_EQ(engine.init(&someRecognizer), outOfMemory ? 0 : 1);
    EXPECT_TRUE(engine.faces.empty() && engine.kernel.empty());
    EXPECT_EQ(engine.clusterCount, 0);
    ASSERT_EQ(engine.clusters.size(), 1u);
    EXPECT_TRUE(engine.clusters.at(-1).id == -1 && engine.clusters.at(-1).members.empty());
    EXPECT_EQ(engine.featureMats.size(), outOfMemory ? 0u : 1u);
    EXPECT_EQ(log.messages(),
              std::vector<std::string>(outOfMemory ? 1 : 0, "malloc fail!!!(in init()"));
  }
}

}  // namespace
