#include "interface/face_recognition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
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

TEST_F(FaceRecognitionLifecycle, InitBuildsInOrderReleaseIsRepeatableAndReinitReplacesAll) {
  LogCapture log;
  ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
  EXPECT_EQ(scripted().events,
            (Events{"FR ctor", "FR Init 960 /models", "LD ctor", "LD Init 1 /models"}));
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(std::tie(log.lines[0].priority, log.lines[0].tag, log.lines[0].message),
            std::make_tuple(3, std::string("FC_Native"),
                            std::string("init FC engine (") + kVersion + ")"));

  scripted().events.clear();
  EXPECT_EQ(handle.itf_xvk_Release(), 1);
  EXPECT_EQ(handle.itf_xvk_Release(), 1);
  EXPECT_EQ(scripted().events, (Events{"FR Release", "FR dtor", "LD Release", "LD dtor"}));
  EXPECT_EQ(log.messages().back(), "release FC engine");
  EXPECT_EQ(log.messages().size(), 3u);

  // Init again replaces every object and drops the loaded faces.
  ASSERT_EQ(handle.itf_xvk_Init("/a"), 960);
  handle.engine->faces.push_back(Face());
  handle.engine->featureMats[0].rows.push_back(Vec<float>(960));
  scripted().events.clear();
  ASSERT_EQ(handle.itf_xvk_Init("/b"), 960);
  EXPECT_EQ(scripted().events, (Events{"FR Release", "FR dtor", "FR ctor", "FR Init 960 /b",
                                       "LD Release", "LD dtor", "LD ctor", "LD Init 1 /b"}));
  EXPECT_TRUE(handle.engine->faces.empty());
  EXPECT_EQ(handle.engine->featureMats[0].rowCount(), 0);
  EXPECT_EQ(handle.engine->recognizer, handle.recognizer);
}

TEST_F(FaceRecognitionLifecycle, AFailedInitStopsAtOnceAndKeepsWhatItHadNotReached) {
  scripted().recognizerInitResult = 0;
  EXPECT_EQ(handle.itf_xvk_Init("/a"), 0);
  EXPECT_NE(handle.recognizer, nullptr);
  EXPECT_EQ(handle.landmarkDetector, nullptr);
  EXPECT_EQ(handle.engine, nullptr);

  scripted().recognizerInitResult = 1;
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
  EXPECT_EQ(handle.landmarkDetector, detector);
  EXPECT_EQ(engine->faces.size(), 1u);
  EXPECT_EQ(log.lines.size(), 1u);  // only the "init FC engine" line

  scripted().recognizerInitResult = 1;
  scripted().landmarkInitResult = 0;  // a new detector, but the old engine and buffer
  EXPECT_EQ(handle.itf_xvk_Init("/c"), 0);
  EXPECT_EQ(handle.engine, engine);
  EXPECT_EQ(handle.featureBuffer, buffer);
}

TEST(NotReadyHandle, EveryOperationFailsWithOneLineAndTouchesNothing) {
  // {Init first, then Release, then an Init whose recognizer / detector
  // returns these}. In the last two the earlier engine points at the
  // recognizer the failed Init deleted.
  const int states[][4] = {{0, 0, 1, 1}, {1, 1, 1, 1}, {1, 0, -2, 1}, {1, 0, 1, 0}};
  for (const auto& state : states) {
    FaceRecognition handle;
    if (state[0]) { EXPECT_EQ(handle.itf_xvk_Init("/a"), 960); }
    if (state[1]) handle.itf_xvk_Release();
    scripted().recognizerInitResult = state[2];
    scripted().landmarkInitResult = state[3];
    if (state[2] < 1 || state[3] < 1) { EXPECT_LT(handle.itf_xvk_Init("/b"), 1); }
    scripted().events.clear();
    // Every operation that needs the handle's objects, with the failure value
    // it must return. Features are real, so only the handle's state can make
    // them fail.
    std::vector<float> feature(2 * 960, 0.5f);
    std::vector<unsigned char> frame(12, 100);
    itf_xvk_faceroi roi = {0, 0, 4, 2};
    itf_xvk_clusteritem item = {0, 0, nullptr, 960, feature.data(), 0};
    itf_xvk_clusterinfo list = {1, &item}, out = {7, nullptr};
    LogCapture log;
    const bool failed[] = {
        handle.itf_xvk_loadFaceFeature(feature.data(), 1) == -1,
        handle.itf_xvk_runClustering(nullptr) == 0,
        handle.itf_xvk_runClustering(&list) == 0,
        handle.itf_xvk_getClusterInfo(&out) == 0 && out.count == 0,
        handle.itf_xvk_getClusterFeature(feature.data(), 2) == nullptr,
        handle.itf_xvk_recommendCluster(&list, feature.data(), 0) == -1,
        handle.itf_xvk_extractFeature(frame.data(), 12, 4, 2, roi) == nullptr,
        handle.itf_xvk_extractFeature(frame.data(), 12, 4, 2, roi, nullptr) == nullptr,
        handle.itf_xvk_compareFeature(feature.data(), feature.data()) == -1};
    EXPECT_EQ(std::count(std::begin(failed), std::end(failed), true), 9);
    EXPECT_EQ(log.lines.size(), 9u);
    EXPECT_TRUE(scripted().events.empty() && scripted().landmarkCalls.empty() &&
                scripted().comparisons.empty());
    scripted().recognizerInitResult = scripted().landmarkInitResult = 1;
    EXPECT_EQ(handle.itf_xvk_Init("/c"), 960);
    handle.itf_xvk_Release();
  }
}

}  // namespace
