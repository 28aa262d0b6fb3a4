// End to end through libxvkfcEngineTAVO.so and the host stand-ins of the
// closed libraries, with the exported interface only.
#include <gtest/gtest.h>

#include <vector>

#include "interface/face_recognition.h"

namespace {

// A grey frame (U = V = 128, Y = 30) with a 40 x 48 pattern, varied by
// `seed`, at (left, top).
std::vector<unsigned char> frameWithFace(int width, int height, int left, int top, int seed) {
  std::vector<unsigned char> frame(width * height, 30);
  frame.resize(width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2), 128);
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 40; ++x) frame[(top + y) * width + left + x] = (x * 7 + y * y * seed) % 256;
  }
  return frame;
}

TEST(HostPipeline, SameFaceRegionScoresTopOtherRegionsLowerNoneOutside) {
  FaceRecognition handle;
  ASSERT_EQ(handle.itf_xvk_Init(testing::TempDir().c_str()), 960);
  // The feature of `roi`, copied out of the handle; empty when there is none.
  auto featureOf = [&](std::vector<unsigned char> frame, int width, int height,
                       itf_xvk_faceroi roi) {
    const float* f = handle.itf_xvk_extractFeature(frame.data(), static_cast<int>(frame.size()),
                                                   width, height, roi);
    return f ? std::vector<float>(f, f + handle.itf_xvk_getDim()) : std::vector<float>();
  };
  const std::vector<unsigned char> first = frameWithFace(96, 64, 10, 8, 3);
  std::vector<float> a = featureOf(first, 96, 64, {10, 8, 40, 48});
  std::vector<float> b = featureOf(frameWithFace(121, 77, 51, 21, 3), 121, 77, {51, 21, 40, 48});
  std::vector<float> c = featureOf(frameWithFace(96, 64, 10, 8, 5), 96, 64, {10, 8, 40, 48});
  std::vector<float> shifted = featureOf(first, 96, 64, {30, 8, 40, 48});
  for (const auto* f : {&a, &b, &c, &shifted}) ASSERT_EQ(f->size(), 960u);
  EXPECT_EQ(handle.itf_xvk_compareFeature(a.data(), b.data()), 1023);
  EXPECT_LT(handle.itf_xvk_compareFeature(a.data(), c.data()), 1023);
  EXPECT_LT(handle.itf_xvk_compareFeature(a.data(), shifted.data()), 1023);

  EXPECT_TRUE(featureOf(first, 96, 64, {96, 8, 40, 48}).empty());        // right of the image
  EXPECT_TRUE(featureOf(first, 96, 64, {55, 0, 40, 8}).empty());         // one grey level
  EXPECT_EQ(featureOf(first, 96, 64, {-20, -10, 60, 60}).size(), 960u);  // partly inside
  handle.itf_xvk_Release();
}

}  // namespace
