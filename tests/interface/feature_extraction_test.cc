#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "interface/yuv_convert.h"
#include "support/log_capture.h"
#include "support/ready_handle.h"

namespace {

using testing_support::LogCapture;
using testing_support::scripted;

class FeatureExtraction : public testing_support::ReadyHandle {
 protected:
  void SetUp() override {
    ReadyHandle::SetUp();
    scripted().landmarksToReport = points;
  }
  float* extract(int dataLength = 12, int width = 4, int height = 2) {
    return handle.itf_xvk_extractFeature(frame.data(), dataLength, width, height, roi, &record);
  }
  std::vector<float> buffer() const { return {handle.featureBuffer, handle.featureBuffer + 960}; }

  std::vector<unsigned char> frame = {10, 20, 30, 40, 50, 60, 70, 80, 100, 160, 90, 200};  // 4 x 2
  itf_xvk_faceroi roi = {1, -2, 3, 40};
  float points[10] = {};
  itf_xvk_landmark record = {};
};

TEST_F(FeatureExtraction, BothOverloadsPassTheFrameOnAndCopyTheFeature) {
  std::vector<unsigned char> bgr(24);
  yuv420_to_bgr24(frame.data(), 4, 2, bgr.data());
  std::fill(record.points, record.points + 10, -5.0f);
  scripted().featureToExtract.assign(960, 0.25f);
  EXPECT_EQ(extract(), handle.featureBuffer);
  scripted().featureToExtract.assign(960, 0.5f);
  EXPECT_EQ(handle.itf_xvk_extractFeature(frame.data(), 12, 4, 2, roi), handle.featureBuffer);
  EXPECT_EQ(buffer(), std::vector<float>(960, 0.5f));
  EXPECT_EQ(std::vector<float>(record.points, record.points + 10), std::vector<float>(10, -5.0f));

  ASSERT_EQ(scripted().extractions.size(), 2u);
  for (int i = 0; i < 2; ++i) {
    const auto& call = scripted().landmarkCalls[i];
    const auto& extraction = scripted().extractions[i];
    EXPECT_TRUE(call.image == frame.data() && extraction.landmarks == points);
    EXPECT_EQ(std::vector<int>({call.width, call.height, call.channels, call.flags, call.left,
                                call.top, call.rectWidth, call.rectHeight, extraction.width,
                                extraction.height, extraction.format}),
              std::vector<int>({4, 2, 3, 0, 1, -2, 3, 40, 4, 2, 2}));
    EXPECT_EQ(extraction.bgr, bgr);
    EXPECT_EQ(extraction.options, std::vector<bool>({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  }
}

TEST_F(FeatureExtraction, NoLandmarksOrNoFeatureLeaveTheBufferQuietly) {
  scripted().featureToExtract.assign(960, 7.0f);
  ASSERT_NE(extract(), nullptr);
  LogCapture log;
  scripted().landmarksToReport = nullptr;
  EXPECT_EQ(extract(), nullptr);
  scripted().landmarksToReport = points;
  scripted().extractorFails = true;
  EXPECT_EQ(extract(), nullptr);
  EXPECT_EQ(scripted().extractions.size(), 2u);  // not asked without landmarks
  EXPECT_EQ(buffer(), std::vector<float>(960, 7.0f));
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(FeatureExtraction, RejectsUnreadableFramesBeforeAnyLibraryCall) {
  LogCapture log;
  EXPECT_EQ(handle.itf_xvk_extractFeature(nullptr, 12, 4, 2, roi), nullptr);
  // Non-positive values; one byte short of 8 + 2 * 2 * 1 and of 15 + 2 * 3 * 2;
  // width * height past INT_MAX; a frame that fits in an int but whose BGR
  // copy (3 bytes a pixel) does not.
  const int lengths[] = {0, 12, 12, 11, 26, INT_MAX, INT_MAX};
  const int widths[] = {4, 0, 4, 4, 5, 65536, 40000};
  const int heights[] = {2, 2, -1, 2, 3, 65536, 25000};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(extract(lengths[i], widths[i], heights[i]), nullptr) << i;
  // Face rectangles whose right or bottom edge is past the int range.
  for (const itf_xvk_faceroi bad :
       {itf_xvk_faceroi{INT_MAX, 0, 1, 1}, {0, INT_MAX - 1, 1, 2}, {INT_MIN, 0, -1, 1}}) {
    roi = bad;
    EXPECT_EQ(extract(), nullptr) << bad.left << " " << bad.top;
  }
  EXPECT_EQ(log.messages(), std::vector<std::string>(11, "Invalid Image Data"));
  EXPECT_TRUE(scripted().landmarkCalls.empty());
  roi = {INT_MAX - 1, INT_MIN, 1, 0};  // edges at the limits
  frame.assign(27, 128);  // exactly 5 x 3
  EXPECT_NE(extract(27, 5, 3), nullptr);
}

TEST_F(FeatureExtraction, CompareChecksBothFeaturesThenMapsOntoZeroTo1023) {
  std::vector<float> reg(960, 1.0f), test(960, 2.0f);
  LogCapture log;
  EXPECT_EQ(handle.itf_xvk_compareFeature(nullptr, nullptr), -1);
  EXPECT_EQ(handle.itf_xvk_compareFeature(reg.data(), nullptr), -1);
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"reg == NULL\n", "test == NULL\n"}));

  const float scores[] = {-1.0f, 0.0f, 0.999f, 1.0f, 1.5f, -1.5f, INFINITY, std::nanf("")};
  const int expected[] = {0, 511, 1022, 1023, 1023, 0, 1023, 0};
  for (int i = 0; i < 8; ++i) {
    scripted().fallback = [score = scores[i]](const float*, const float*) { return score; };
    EXPECT_EQ(handle.itf_xvk_compareFeature(reg.data(), test.data()), expected[i]) << scores[i];
  }
}

}  // namespace
