#include "interface/face_recognition.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "clustering/face_clustering_system.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"

namespace {

using testing_support::LogCapture;
using testing_support::scripted;
using Events = std::vector<std::string>;

const char kVersion[] = "__ITF__FACESOLUTION__Version : 2016.11.24(M)";

// Each test ends with the handle released, so nothing leaks under ASan.
class FaceRecognitionLifecycle : public testing::Test {
 protected:
  void TearDown() override { handle.itf_xvk_Release(); }
  FaceRecognition handle;
};

TEST(VersionRecord, HoldsTheVersionTextPaddedWithZeros) {
  EXPECT_EQ(sizeof(itf_FACE_SOLUTION_Version), 1000u);
  EXPECT_STREQ(itf_FACE_SOLUTION_Version, kVersion);
  for (size_t i = sizeof(kVersion) - 1; i < 1000; ++i) ASSERT_EQ(itf_FACE_SOLUTION_Version[i], 0);
}

TEST_F(FaceRecognitionLifecycle, InitBuildsEverythingInOrder) {
  LogCapture log;
  ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
  EXPECT_EQ(scripted().events,
            (Events{"FR ctor", "FR Init 960 /models", "LD ctor", "LD Init 1 /models"}));
  ASSERT_NE(handle.recognizer, nullptr);
  ASSERT_NE(handle.landmarkDetector, nullptr);
  ASSERT_NE(handle.engine, nullptr);
  ASSERT_NE(handle.featureBuffer, nullptr);
  EXPECT_EQ(handle.engine->recognizer, handle.recognizer);
  EXPECT_EQ(handle.engine->clusters.count(-1), 1u);

  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0].message, std::string("init FC engine (") + kVersion + ")");
  EXPECT_EQ(log.lines[0].tag, "FC_Native");
  EXPECT_EQ(log.lines[0].priority, 3);
}

TEST_F(FaceRecognitionLifecycle, ReinitReplacesEveryObjectAndDropsLoadedFaces) {
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  handle.engine->faces.push_back(Face());
  handle.engine->featureMats[0].rows.push_back(Vec<float>(960));
  scripted().events.clear();

  ASSERT_EQ(handle.itf_xvk_Init("/b"), 960);
  EXPECT_EQ(scripted().events,
            (Events{"FR Release", "FR dtor", "FR ctor", "FR Init 960 /b", "LD Release", "LD dtor",
                    "LD ctor", "LD Init 1 /b"}));
  EXPECT_TRUE(handle.engine->faces.empty());
  EXPECT_EQ(handle.engine->featureMats[0].rowCount(), 0);
  EXPECT_EQ(handle.engine->recognizer, handle.recognizer);
}

TEST_F(FaceRecognitionLifecycle, FailedRecognizerInitStopsAtOnce) {
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  CLandmarkInterface* detector = handle.landmarkDetector;
  FaceClusteringSystem* engine = handle.engine;
  float* buffer = handle.featureBuffer;
  engine->faces.push_back(Face());
  scripted().events.clear();
  scripted().recognizerInitResult = -3;

  LogCapture log;
  EXPECT_EQ(handle.itf_xvk_Init("/b"), -3);
  EXPECT_EQ(scripted().events, (Events{"FR Release", "FR dtor", "FR ctor", "FR Init 960 /b"}));
  EXPECT_NE(handle.recognizer, nullptr);  // the new, uninitialised object
  EXPECT_EQ(handle.landmarkDetector, detector);
  EXPECT_EQ(handle.engine, engine);
  EXPECT_EQ(handle.featureBuffer, buffer);
  EXPECT_EQ(engine->faces.size(), 1u);
  EXPECT_EQ(log.lines.size(), 1u);  // only the "init FC engine" line
}

TEST_F(FaceRecognitionLifecycle, FailedLandmarkInitKeepsTheOldEngineAndBuffer) {
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  FaceClusteringSystem* engine = handle.engine;
  float* buffer = handle.featureBuffer;
  scripted().landmarkInitResult = 0;

  EXPECT_EQ(handle.itf_xvk_Init("/b"), 0);
  EXPECT_EQ(handle.engine, engine);
  EXPECT_EQ(handle.featureBuffer, buffer);
  EXPECT_NE(handle.landmarkDetector, nullptr);
}

TEST_F(FaceRecognitionLifecycle, FirstInitFailingLeavesLaterMembersNull) {
  scripted().recognizerInitResult = 0;
  EXPECT_EQ(handle.itf_xvk_Init("/a"), 0);
  EXPECT_NE(handle.recognizer, nullptr);
  EXPECT_EQ(handle.landmarkDetector, nullptr);
  EXPECT_EQ(handle.engine, nullptr);
  EXPECT_EQ(handle.featureBuffer, nullptr);
}

TEST_F(FaceRecognitionLifecycle, ReleaseEmptiesTheHandleAndIsRepeatable) {
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  scripted().events.clear();
  LogCapture log;

  EXPECT_EQ(handle.itf_xvk_Release(), 1);
  EXPECT_EQ(scripted().events, (Events{"FR Release", "FR dtor", "LD Release", "LD dtor"}));
  EXPECT_EQ(handle.recognizer, nullptr);
  EXPECT_EQ(handle.landmarkDetector, nullptr);
  EXPECT_EQ(handle.engine, nullptr);
  EXPECT_EQ(handle.featureBuffer, nullptr);

  EXPECT_EQ(handle.itf_xvk_Release(), 1);
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"release FC engine", "release FC engine"}));
  EXPECT_EQ(scripted().events.size(), 4u);
}

TEST_F(FaceRecognitionLifecycle, InitAfterReleaseWorks) {
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  handle.itf_xvk_Release();
  EXPECT_EQ(handle.itf_xvk_Init("/a"), 960);
}

}  // namespace
