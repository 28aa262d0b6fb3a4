#include "interface/yuv_convert.h"

#include <algorithm>
#include <cstddef>

#include "numeric/float_to_int.h"

namespace {

// Colour conversion coefficients, applied in double precision.
constexpr double kBlueFromU = 1.732446;
constexpr double kGreenFromV = 0.698001;
constexpr double kGreenFromU = 0.337633;
constexpr double kRedFromV = 1.370705;

// Chroma samples are stored as offsets from this value.
constexpr int kChromaZero = 128;

unsigned char toByte(double value) {
  return static_cast<unsigned char>(std::clamp(detail::truncToIntArm(value), 0, 255));
}

// Converts every pixel of `src` and hands (index of the pixel, B, G, R) to
// `store`; the two converters differ only in their `store`.
template <typename Store>
void convertEachPixel(const unsigned char* src, int width, int height, Store&& store) {
  if (width < 1 || height < 1) return;
  const int chromaWidth = (width + 1) / 2;
  const int chromaHeight = (height + 1) / 2;
  const size_t lumaSize = static_cast<size_t>(width) * height;
  const unsigned char* planeU = src + lumaSize;
  const unsigned char* planeV = planeU + static_cast<size_t>(chromaWidth) * chromaHeight;

  for (int y = 0; y < height; ++y) {
    // An odd last row reads the chroma of the row before it. For height 1
    // that is row -1, and -1 / 2 is still chroma row 0.
    const int chromaY = (y == height - 1 && height % 2 == 1) ? height - 2 : y;
    for (int x = 0; x < width; ++x) {
      const int chromaX = (x == width - 1 && width % 2 == 1) ? width - 2 : x;
      const size_t pixel = static_cast<size_t>(y) * width + x;
      const size_t chroma = static_cast<size_t>(chromaY / 2) * chromaWidth + chromaX / 2;
      const int luma = src[pixel];
      const int u = planeU[chroma] - kChromaZero;
      const int v = planeV[chroma] - kChromaZero;
      const double blue = luma + kBlueFromU * u;
      const double green = luma - kGreenFromV * v - kGreenFromU * u;
      const double red = luma + kRedFromV * v;
      store(pixel, toByte(blue), toByte(green), toByte(red));
    }
  }
}

}  // namespace

void yuv420_to_bgr24(unsigned char* src, int width, int height, unsigned char* dst) {
  convertEachPixel(src, width, height,
                   [dst](size_t pixel, unsigned char b, unsigned char g, unsigned char r) {
                     dst[3 * pixel + 0] = b;
                     dst[3 * pixel + 1] = g;
                     dst[3 * pixel + 2] = r;
                   });
}

void yuv420_to_bgr(unsigned char* src, unsigned char* dstB, unsigned char* dstG,
                   unsigned char* dstR, int width, int height) {
  convertEachPixel(src, width, height,
                   [=](size_t pixel, unsigned char b, unsigned char g, unsigned char r) {
                     dstB[pixel] = b;
                     dstG[pixel] = g;
                     dstR[pixel] = r;
                   });
}
