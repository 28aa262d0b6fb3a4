#include "interface/yuv_convert.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// A planar 4:2:0 frame: Y plane, then U and V planes of cw x ch.
struct Frame {
  Frame(int width, int height, unsigned char luma)
      : width(width), height(height), cw((width + 1) / 2), ch((height + 1) / 2),
        bytes(width * height + 2 * cw * ch, 128) {
    for (int i = 0; i < width * height; ++i) bytes[i] = luma;
  }
  unsigned char& u(int k) { return bytes[width * height + k]; }
  unsigned char& v(int k) { return bytes[width * height + cw * ch + k]; }
  std::vector<unsigned char> toBgr24() {
    std::vector<unsigned char> bgr(width * height * 3);
    yuv420_to_bgr24(bytes.data(), width, height, bgr.data());
    return bgr;
  }
  int width, height, cw, ch;
  std::vector<unsigned char> bytes;
};

std::vector<int> convertOnePixel(unsigned char y, unsigned char u, unsigned char v) {
  Frame frame(1, 1, y);
  frame.u(0) = u;
  frame.v(0) = v;
  const std::vector<unsigned char> bgr = frame.toBgr24();
  return {bgr[0], bgr[1], bgr[2]};
}

TEST(YuvToBgr, TruncatesTowardZeroThenClamps) {
  EXPECT_EQ(convertOnePixel(255, 128, 128), (std::vector<int>{255, 255, 255}));
  // B = 0 + 1.732446 * 127 = 220.02; G = -42.9 clamps to 0.
  EXPECT_EQ(convertOnePixel(0, 255, 128), (std::vector<int>{220, 0, 0}));
  // B = 82.68, G = 96.40, R = 113.71: truncation, not rounding.
  EXPECT_EQ(convertOnePixel(100, 118, 138), (std::vector<int>{82, 96, 113}));
  // R = 250 + 174.08 clamps to 255; G = 250 - 88.65 = 161.35.
  EXPECT_EQ(convertOnePixel(250, 128, 255), (std::vector<int>{250, 161, 255}));
}

// Every chroma sample k carries U = V = 128 + 10k over Y = 100, so the blue
// and red bytes of a pixel tell which sample it was converted with.
void expectChromaSamples(int width, int height, const std::vector<int>& expected) {
  Frame frame(width, height, 100);
  for (int k = 0; k < frame.cw * frame.ch; ++k) frame.u(k) = frame.v(k) = 128 + 10 * k;
  const std::vector<unsigned char> bgr = frame.toBgr24();
  for (int pixel = 0; pixel < width * height; ++pixel) {
    const int k = expected[pixel];
    SCOPED_TRACE(testing::Message() << width << "x" << height << " pixel " << pixel);
    EXPECT_EQ(bgr[3 * pixel], static_cast<int>(100 + 1.732446 * 10 * k));
    EXPECT_EQ(bgr[3 * pixel + 2], static_cast<int>(100 + 1.370705 * 10 * k));
  }
}

TEST(YuvToBgr, OddLastRowAndColumnTakeChromaFromOnePixelEarlier) {
  // 3 x 3: column 2 reads chroma column 0 (from x = 1), row 2 chroma row 0.
  expectChromaSamples(3, 3, {0, 0, 0, 0, 0, 0, 0, 0, 0});
  // 5 x 2: column 4 reads chroma column 1, not its own column 2.
  expectChromaSamples(5, 2, {0, 0, 1, 1, 1, 0, 0, 1, 1, 1});
  // 3 x 5 (chroma 2 x 3): row 4 reads chroma row 1, not its own row 2.
  expectChromaSamples(3, 5, {0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 2, 2, 2, 2, 2});
  expectChromaSamples(4, 2, {0, 0, 1, 1, 0, 0, 1, 1});
}

TEST(YuvToBgr, PlanarAndInterleavedConvertersAgree) {
  Frame frame(7, 5, 0);
  uint32_t state = 12345;
  for (unsigned char& byte : frame.bytes) {
    state = state * 1103515245u + 12345u;
    byte = static_cast<unsigned char>(state >> 24);
  }
  const std::vector<unsigned char> bgr = frame.toBgr24();
  std::vector<unsigned char> b(35), g(35), r(35);
  yuv420_to_bgr(frame.bytes.data(), b.data(), g.data(), r.data(), 7, 5);
  for (int i = 0; i < 35; ++i) {
    ASSERT_EQ(b[i], bgr[3 * i]) << i;
    ASSERT_EQ(g[i], bgr[3 * i + 1]) << i;
    ASSERT_EQ(r[i], bgr[3 * i + 2]) << i;
  }
}

TEST(YuvToBgr, EmptySizesWriteNothing) {
  Frame frame(2, 2, 50);
  std::vector<unsigned char> dst(12, 7);
  yuv420_to_bgr24(frame.bytes.data(), 0, 2, dst.data());
  yuv420_to_bgr24(frame.bytes.data(), 2, -1, dst.data());
  yuv420_to_bgr(frame.bytes.data(), dst.data(), dst.data(), dst.data(), 2, 0);
  EXPECT_EQ(dst, std::vector<unsigned char>(12, 7));
}

}  // namespace
