// End to end through libxvkfcEngineTAVO.so and the host stand-ins of the
// closed libraries, with the exported interface only.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interface/face_recognition.h"

namespace {

// A grey planar 4:2:0 frame (U = V = 128) whose Y plane is `background`
// except for a 40 x 48 face pattern at (left, top), varied by `seed`.
std::vector<unsigned char> frameWithFace(int width, int height, int left, int top, int seed) {
  const int chromaSize = 2 * ((width + 1) / 2) * ((height + 1) / 2);
  std::vector<unsigned char> frame(width * height + chromaSize, 128);
  for (int i = 0; i < width * height; ++i) frame[i] = 30;
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 40; ++x) {
      frame[(top + y) * width + left + x] = static_cast<unsigned char>((x * 7 + y * y * seed) % 256);
    }
  }
  return frame;
}

class HostPipeline : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(handle.itf_xvk_Init(testing::TempDir().c_str()), 960); }
  void TearDown() override { handle.itf_xvk_Release(); }

  // The feature of `roi` in `frame`, copied out of the handle; empty if none.
  std::vector<float> featureOf(std::vector<unsigned char>& frame, int width, int height,
                               itf_xvk_faceroi roi) {
    const float* feature = handle.itf_xvk_extractFeature(
        frame.data(), static_cast<int>(frame.size()), width, height, roi);
    if (feature == nullptr) return {};
    return std::vector<float>(feature, feature + handle.itf_xvk_getDim());
  }

  FaceRecognition handle;
};

TEST_F(HostPipeline, SameFaceRegionScoresTopAndOtherRegionsLower) {
  std::vector<unsigned char> first = frameWithFace(96, 64, 10, 8, 3);
  std::vector<unsigned char> second = frameWithFace(121, 77, 51, 21, 3);
  std::vector<unsigned char> other = frameWithFace(96, 64, 10, 8, 5);

  std::vector<float> a = featureOf(first, 96, 64, {10, 8, 40, 48});
  std::vector<float> b = featureOf(second, 121, 77, {51, 21, 40, 48});
  std::vector<float> c = featureOf(other, 96, 64, {10, 8, 40, 48});
  std::vector<float> shifted = featureOf(first, 96, 64, {30, 8, 40, 48});
  ASSERT_EQ(a.size(), 960u);
  ASSERT_EQ(b.size(), 960u);
  ASSERT_EQ(c.size(), 960u);
  ASSERT_EQ(shifted.size(), 960u);

  EXPECT_EQ(a, b);
  EXPECT_EQ(handle.itf_xvk_compareFeature(a.data(), b.data()), 1023);
  EXPECT_LT(handle.itf_xvk_compareFeature(a.data(), c.data()), 1023);
  EXPECT_LT(handle.itf_xvk_compareFeature(a.data(), shifted.data()), 1023);
}

TEST_F(HostPipeline, NoFeatureOutsideTheImageOrForAFlatRegion) {
  std::vector<unsigned char> frame = frameWithFace(96, 64, 10, 8, 3);
  EXPECT_TRUE(featureOf(frame, 96, 64, {96, 8, 40, 48}).empty());
  EXPECT_TRUE(featureOf(frame, 96, 64, {-40, 8, 40, 48}).empty());
  EXPECT_TRUE(featureOf(frame, 96, 64, {10, 8, 0, 48}).empty());
  EXPECT_TRUE(featureOf(frame, 96, 64, {55, 0, 40, 8}).empty());  // background only
  // Partly outside still describes the part inside.
  EXPECT_EQ(featureOf(frame, 96, 64, {-20, -10, 60, 60}).size(), 960u);
}

}  // namespace
