#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/yuv_convert.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"

namespace {

using testing_support::LogCapture;
using testing_support::scripted;

std::vector<float> patternFeature(float start) {
  std::vector<float> feature(960);
  for (int i = 0; i < 960; ++i) feature[i] = start + i;
  return feature;
}

class FeatureExtraction : public testing::Test {
 protected:
  // A 4 x 2 frame: 8 luma bytes, then 2 U and 2 V bytes.
  FeatureExtraction() : frame{10, 20, 30, 40, 50, 60, 70, 80, 100, 160, 90, 200} {}
  void SetUp() override {
    ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
    scripted().landmarksToReport = points;
  }
  void TearDown() override { handle.itf_xvk_Release(); }

  float* extract(int overload) {
    if (overload == 0) return handle.itf_xvk_extractFeature(frame.data(), 12, 4, 2, roi, &record);
    return handle.itf_xvk_extractFeature(frame.data(), 12, 4, 2, roi);
  }
  std::vector<float> buffer() const {
    return std::vector<float>(handle.featureBuffer, handle.featureBuffer + 960);
  }

  FaceRecognition handle;
  std::vector<unsigned char> frame;
  itf_xvk_faceroi roi = {1, -2, 3, 40};
  float points[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  itf_xvk_landmark record;
};

TEST_F(FeatureExtraction, BothOverloadsPassTheSameArgumentsAndCopyTheFeature) {
  std::vector<unsigned char> expectedBgr(4 * 2 * 3);
  yuv420_to_bgr24(frame.data(), 4, 2, expectedBgr.data());
  std::memset(&record, 0xA5, sizeof record);
  const itf_xvk_landmark untouched = record;

  for (int overload = 0; overload < 2; ++overload) {
    SCOPED_TRACE(overload);
    scripted().landmarkCalls.clear();
    scripted().extractions.clear();
    scripted().featureToExtract = patternFeature(overload * 1000.0f);

    EXPECT_EQ(extract(overload), handle.featureBuffer);
    EXPECT_EQ(buffer(), scripted().featureToExtract);

    ASSERT_EQ(scripted().landmarkCalls.size(), 1u);
    const testing_support::LandmarkCall& call = scripted().landmarkCalls[0];
    EXPECT_EQ(call.image, frame.data());
    EXPECT_EQ(std::vector<int>({call.width, call.height, call.channels, call.flags, call.left,
                                call.top, call.rectWidth, call.rectHeight}),
              std::vector<int>({4, 2, 3, 0, 1, -2, 3, 40}));

    ASSERT_EQ(scripted().extractions.size(), 1u);
    const testing_support::ExtractionCall& extraction = scripted().extractions[0];
    EXPECT_EQ(extraction.bgr, expectedBgr);
    EXPECT_EQ(extraction.width, 4);
    EXPECT_EQ(extraction.height, 2);
    EXPECT_EQ(extraction.landmarks, points);
    std::vector<bool> flags(11, false);
    flags[10] = true;
    EXPECT_EQ(extraction.options, flags);
    EXPECT_EQ(extraction.format, 2);
  }
  EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
}

TEST_F(FeatureExtraction, NoLandmarksOrNoFeatureLeaveTheBufferQuietly) {
  scripted().featureToExtract = patternFeature(7.0f);
  ASSERT_NE(extract(1), nullptr);
  LogCapture log;

  scripted().landmarksToReport = nullptr;
  EXPECT_EQ(extract(0), nullptr);
  EXPECT_EQ(scripted().extractions.size(), 1u);  // the extractor was not called

  scripted().landmarksToReport = points;
  scripted().extractorFails = true;
  scripted().featureToExtract = patternFeature(-7.0f);
  EXPECT_EQ(extract(1), nullptr);
  EXPECT_EQ(scripted().extractions.size(), 2u);

  EXPECT_EQ(buffer(), patternFeature(7.0f));
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(FeatureExtraction, RejectsUnreadableImagesBeforeAnyLibraryCall) {
  struct Case {
    unsigned char* image;
    int dataLength, width, height;
  };
  unsigned char* image = frame.data();
  const Case cases[] = {
      {nullptr, 12, 4, 2},
      {image, 0, 4, 2},
      {image, 12, 0, 2},
      {image, 12, 4, -1},
      {image, 11, 4, 2},                // one byte short of 8 + 2 * 2 * 1
      {image, 26, 5, 3},                // one byte short of 15 + 2 * 3 * 2
      {image, INT_MAX, 65536, 65536},   // width * height overflows
      {image, INT_MAX, 40000, 25000},   // the frame fits, its BGR copy does not
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.dataLength << " " << c.width << "x" << c.height);
    LogCapture log;
    EXPECT_EQ(handle.itf_xvk_extractFeature(c.image, c.dataLength, c.width, c.height, roi),
              nullptr);
    EXPECT_EQ(log.messages(), std::vector<std::string>{"Invalid Image Data"});
  }
  EXPECT_TRUE(scripted().landmarkCalls.empty());

  std::vector<unsigned char> odd(27, 128);  // exactly 5 x 3
  EXPECT_NE(handle.itf_xvk_extractFeature(odd.data(), 27, 5, 3, roi), nullptr);
}

TEST_F(FeatureExtraction, CompareRefusesNullFeaturesWithTheirOwnMessage) {
  std::vector<float> feature = patternFeature(0.0f);
  LogCapture log;
  EXPECT_EQ(handle.itf_xvk_compareFeature(nullptr, feature.data()), -1);
  EXPECT_EQ(handle.itf_xvk_compareFeature(feature.data(), nullptr), -1);
  EXPECT_EQ(handle.itf_xvk_compareFeature(nullptr, nullptr), -1);
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{"reg == NULL\n", "test == NULL\n", "reg == NULL\n"}));
  EXPECT_TRUE(scripted().comparisons.empty());
}

TEST_F(FeatureExtraction, CompareMapsTheScoreOntoZeroTo1023) {
  std::vector<float> reg = patternFeature(0.0f), test = patternFeature(1.0f);
  const float inf = std::numeric_limits<float>::infinity();
  const struct {
    float score;
    int expected;
  } cases[] = {{-1.0f, 0},    {0.0f, 511},   {0.999f, 1022},    {1.0f, 1023}, {1.5f, 1023},
               {-1.5f, 0},    {inf, 1023},   {-inf, 0},         {std::nanf(""), 0}};
  for (const auto& c : cases) {
    scripted().fallback = [&](const float*, const float*) { return c.score; };
    EXPECT_EQ(handle.itf_xvk_compareFeature(reg.data(), test.data()), c.expected) << c.score;
  }
  ASSERT_FALSE(scripted().comparisons.empty());
  EXPECT_EQ(scripted().comparisons[0].firstPointer, reg.data());
  EXPECT_EQ(scripted().comparisons[0].secondPointer, test.data());
}

}  // namespace
