#include "interface/yuv_convert.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// Converts with both converters, requires them to agree, and returns the
// interleaved result.
Bytes convert(Bytes frame, int width, int height) {
  const int n = width * height;
  Bytes bgr(3 * n), planes(3 * n);
  yuv420_to_bgr24(frame.data(), width, height, bgr.data());
  yuv420_to_bgr(frame.data(), &planes[0], &planes[n], &planes[2 * n], width, height);
  for (int i = 0; i < 3 * n; ++i) EXPECT_EQ(planes[(i % 3) * n + i / 3], bgr[i]) << i;
  return bgr;
}

TEST(YuvToBgr, TruncatesTowardZeroThenClamps) {
  // A 1 x 1 frame is Y, U, V; its substituted chroma column -1 still reads sample 0.
  EXPECT_EQ(convert({255, 128, 128}, 1, 1), Bytes({255, 255, 255}));
  EXPECT_EQ(convert({0, 255, 128}, 1, 1), Bytes({220, 0, 0}));        // B = 220.02, G < 0
  EXPECT_EQ(convert({100, 118, 138}, 1, 1), Bytes({82, 96, 113}));    // 82.68, 96.40, 113.71
  EXPECT_EQ(convert({250, 128, 255}, 1, 1), Bytes({250, 161, 255}));  // R = 424.08
}

// Chroma sample k of a Y = 100 frame holds U = V = 128 + 10k, so the blue and
// red bytes of each pixel show which sample converted it.
void expectChromaSamples(int width, int height, const std::vector<int>& expected) {
  const int luma = width * height, chroma = ((width + 1) / 2) * ((height + 1) / 2);
  Bytes frame(luma + 2 * chroma, 100);
  for (int k = 0; k < chroma; ++k) frame[luma + k] = frame[luma + chroma + k] = 128 + 10 * k;
  SCOPED_TRACE(testing::Message() << width << " x " << height);
  const Bytes bgr = convert(frame, width, height);
  for (int i = 0; i < luma; ++i) {
    EXPECT_EQ(bgr[3 * i], static_cast<int>(100 + 17.32446 * expected[i])) << i;
    EXPECT_EQ(bgr[3 * i + 2], static_cast<int>(100 + 13.70705 * expected[i])) << i;
  }
}

TEST(YuvToBgr, OddLastRowAndColumnTakeChromaFromOnePixelEarlier) {
  expectChromaSamples(3, 3, std::vector<int>(9, 0));          // column 2 and row 2 too
  expectChromaSamples(5, 2, {0, 0, 1, 1, 1, 0, 0, 1, 1, 1});  // column 4: sample 1, not 2
  expectChromaSamples(3, 5, {0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 2, 2, 2, 2, 2});  // row 4: chroma row 1
}

}  // namespace
