#include "clustering/face_clustering_system.h"

#include <gtest/gtest.h>

#include "support/alloc_failure.h"
#include "support/log_capture.h"

namespace {

int someRecognizer;  // init only stores the pointer

// A null recognizer changes nothing; otherwise init resets to the empty
// bucket, and running out of memory on the feature matrix reset (its last
// allocation) is logged after the other resets were done.
TEST(FaceClusteringSystemInit, ResetsToTheUnclusteredBucketUnlessTheRecognizerIsNull) {
  FaceClusteringSystem engine;
  const long allocations = alloc_failure::countAllocations([&] { engine.init(&someRecognizer); });
  for (int outcome : {-1, 0, 1}) {  // null recognizer, out of memory, done
    engine.faces.push_back(Face());
    engine.kernel.assign(1, Vec<float>(1, 1.0f));
    engine.clusters[4].members = {0};
    engine.clusterCount = 2;
    testing_support::LogCapture log;
    if (outcome == 0) alloc_failure::failNth(allocations);
    EXPECT_EQ(engine.init(outcome < 0 ? nullptr : &someRecognizer), outcome < 0 ? 0 : outcome);
    EXPECT_EQ(engine.faces.empty() && engine.kernel.empty() && engine.clusterCount == 0, outcome >= 0);
    EXPECT_EQ(engine.clusters.count(4), outcome < 0 ? 1u : 0u);
    if (outcome < 0) continue;
    EXPECT_TRUE(engine.clusters.at(-1).id == -1 && engine.clusters.at(-1).members.empty());
    EXPECT_EQ(engine.featureMats.size(), outcome == 0 ? 0u : 1u);
    EXPECT_EQ(log.messages(), std::vector<std::string>(1 - outcome, "malloc fail!!!(in init()"));
  }
}

}  // namespace
