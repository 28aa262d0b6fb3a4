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
  engine.clusterInfos.push_back(clusterinfo());
  engine.clusterCount = 2;
  engine.initialFaceCount = 3;
}

TEST(FaceClusteringSystemInit, ResetsToTheUnclusteredBucketUnlessTheRecognizerIsNull) {
  FaceClusteringSystem engine;
  ASSERT_EQ(engine.init(&someRecognizer), 1);
  dirty(engine);
  EXPECT_EQ(engine.init(nullptr), 0);  // changes nothing
  EXPECT_EQ(engine.faces.size(), 1u);
  EXPECT_EQ(engine.clusters.size(), 2u);
  EXPECT_EQ(engine.clusterCount, 2);

  ASSERT_EQ(engine.init(&someRecognizer), 1);
  EXPECT_EQ(engine.recognizer, &someRecognizer);
  EXPECT_EQ(engine.initialFaceCount, 0);
  EXPECT_EQ(engine.clusterCount, 0);
  EXPECT_TRUE(engine.faces.empty());
  EXPECT_TRUE(engine.clusterInfos.empty());
  EXPECT_TRUE(engine.kernel.empty());
  ASSERT_EQ(engine.featureMats.size(), 1u);
  EXPECT_EQ(engine.featureMats[0].rowCount(), 0);
  ASSERT_EQ(engine.clusters.size(), 1u);
  EXPECT_EQ(engine.clusters.at(-1).id, -1);
  EXPECT_TRUE(engine.clusters.at(-1).members.empty());
}

TEST(FaceClusteringSystemInit, OutOfMemoryResettingFeaturesIsLoggedAfterTheOtherResets) {
  FaceClusteringSystem engine;
  const long allocations = alloc_failure::countAllocations([&] { engine.init(&someRecognizer); });
  dirty(engine);
  testing_support::LogCapture log;
  alloc_failure::failNth(allocations);  // the feature matrix reset is init's last allocation
  EXPECT_EQ(engine.init(&someRecognizer), 0);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"malloc fail!!!(in init()"});
  EXPECT_TRUE(engine.faces.empty());
  EXPECT_EQ(engine.clusterCount, 0);
  ASSERT_EQ(engine.clusters.size(), 1u);
  EXPECT_EQ(engine.clusters.at(-1).id, -1);
  EXPECT_TRUE(engine.featureMats.empty());
}

}  // namespace
