#include "tools/png_image.h"

#include <algorithm>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

namespace tool {
namespace {

// 3 x 5 glyphs, one row of three bits per entry, most significant bit left.
struct Glyph {
  char character;
  uint8_t rows[5];
};
constexpr Glyph kGlyphs[] = {
    {'0', {7, 5, 5, 5, 7}}, {'1', {2, 6, 2, 2, 7}}, {'2', {7, 1, 7, 4, 7}}, {'3', {7, 1, 7, 1, 7}},
    {'4', {5, 5, 7, 1, 1}}, {'5', {7, 4, 7, 1, 7}}, {'6', {7, 4, 7, 5, 7}}, {'7', {7, 1, 1, 1, 1}},
    {'8', {7, 5, 7, 5, 7}}, {'9', {7, 5, 7, 1, 7}}, {'.', {0, 0, 0, 0, 2}}, {'-', {0, 0, 7, 0, 0}},
};

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

void RgbImage::text(int x, int y, const std::string& text, int scale, Rgb color) {
  for (char c : text) {
    for (const Glyph& glyph : kGlyphs) {
      if (glyph.character != c) continue;
      for (int row = 0; row < 5; ++row) {
        for (int col = 0; col < 3; ++col) {
          if (glyph.rows[row] & (4 >> col)) {
            fill(x + col * scale, y + row * scale, scale, scale, color);
          }
        }
      }
    }
    x += 4 * scale;
  }
}

int RgbImage::textWidth(const std::string& text, int scale) {
  return text.empty() ? 0 : static_cast<int>(text.size()) * 4 * scale - scale;
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
