#include "tools/formats/image_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "tools/formats/atomic_file.h"
#include "tools/tool_error.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#include <stb_image.h>

namespace tool {
namespace {

// Full-range BT.601, matching the library's conversion back:
// B = Y + 1.732446 (U - 128) and R = Y + 1.370705 (V - 128).
constexpr double kBlueFromU = 1.732446;
constexpr double kRedFromV = 1.370705;

unsigned char toByte(double value) {
  return static_cast<unsigned char>(std::clamp(std::lround(value), 0L, 255L));
}

}  // namespace

bool isCompressedImageName(const std::string& path) {
  return hasSuffix(path, ".png") || hasSuffix(path, ".jpg") || hasSuffix(path, ".jpeg");
}

YuvImage decodeToYuv420(const std::string& bytes, const std::string& source) {
  if (bytes.size() > static_cast<size_t>(std::numeric_limits<int>::max())) {
    throw ToolError(source + ": image file too large");
  }
  int width = 0, height = 0, channels = 0;
  unsigned char* rgb =
      stbi_load_from_memory(reinterpret_cast<const unsigned char*>(bytes.data()),
                            static_cast<int>(bytes.size()), &width, &height, &channels, 3);
  if (rgb == nullptr) {
    throw ToolError(source + ": not a readable PNG or JPEG image (" + stbi_failure_reason() + ")");
  }
  const std::unique_ptr<unsigned char, void (*)(void*)> owner(rgb, stbi_image_free);
  YuvImage image;
  image.width = width;
  image.height = height;
  const size_t pixels = static_cast<size_t>(width) * height;
  const int chromaWidth = (width + 1) / 2, chromaHeight = (height + 1) / 2;
  const size_t chroma = static_cast<size_t>(chromaWidth) * chromaHeight;
  image.planes.assign(pixels + 2 * chroma, 0);
  std::vector<double> luma(pixels);
  for (size_t i = 0; i < pixels; ++i) {
    const unsigned char* p = rgb + 3 * i;
    luma[i] = 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
    image.planes[i] = toByte(luma[i]);
  }
  for (int cy = 0; cy < chromaHeight; ++cy) {
    for (int cx = 0; cx < chromaWidth; ++cx) {
      double u = 0.0, v = 0.0;
      int count = 0;
      for (int y = 2 * cy; y < std::min(height, 2 * cy + 2); ++y) {
        for (int x = 2 * cx; x < std::min(width, 2 * cx + 2); ++x) {
          const size_t i = static_cast<size_t>(y) * width + x;
          u += (rgb[3 * i + 2] - luma[i]) / kBlueFromU;
          v += (rgb[3 * i] - luma[i]) / kRedFromV;
          ++count;
        }
      }
      const size_t c = static_cast<size_t>(cy) * chromaWidth + cx;
      image.planes[pixels + c] = toByte(128.0 + u / count);
      image.planes[pixels + chroma + c] = toByte(128.0 + v / count);
    }
  }
  return image;
}

}  // namespace tool
