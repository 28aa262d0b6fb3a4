#include "tools/formats/png_image.h"

#include <algorithm>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

namespace tool {
namespace {

void appendToString(void* context, void* data, int size) {
  static_cast<std::string*>(context)->append(static_cast<const char*>(data),
                                             static_cast<size_t>(size));
}

}  // namespace

RgbImage::RgbImage(int width, int height, Rgb background)
    : width_(width), height_(height), pixels_(static_cast<size_t>(width) * height * 3) {
  fill(0, 0, width, height, background);
}

void RgbImage::fill(int x, int y, int w, int h, Rgb color) {
  for (int row = std::max(y, 0); row < std::min(y + h, height_); ++row) {
    for (int col = std::max(x, 0); col < std::min(x + w, width_); ++col) {
      uint8_t* pixel = &pixels_[(static_cast<size_t>(row) * width_ + col) * 3];
      pixel[0] = color.r;
      pixel[1] = color.g;
      pixel[2] = color.b;
    }
  }
}

std::string encodePng(const RgbImage& image) {
  std::string bytes;
  stbi_write_png_to_func(appendToString, &bytes, image.width(), image.height(), 3,
                         image.pixels().data(), image.width() * 3);
  return bytes;
}

std::string base64(const std::string& bytes) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = static_cast<uint8_t>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) group |= static_cast<uint8_t>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) group |= static_cast<uint8_t>(bytes[i + 2]);
    out += kAlphabet[(group >> 18) & 63];
    out += kAlphabet[(group >> 12) & 63];
    out += i + 1 < bytes.size() ? kAlphabet[(group >> 6) & 63] : '=';
    out += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
  }
  return out;
}

}  // namespace tool
