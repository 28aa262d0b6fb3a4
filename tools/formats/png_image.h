// A small RGB canvas and its PNG encoding, for the report's heat map.
#ifndef XVKFC_TOOLS_FORMATS_PNG_IMAGE_H_
#define XVKFC_TOOLS_FORMATS_PNG_IMAGE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct Rgb {
  uint8_t r, g, b;
};

// width x height pixels, 3 bytes each, rows top to bottom.
class RgbImage {
 public:
  RgbImage(int width, int height, Rgb background);

  int width() const { return width_; }
  int height() const { return height_; }
  const std::vector<uint8_t>& pixels() const { return pixels_; }

  // Fills the rectangle, clipped to the image.
  void fill(int x, int y, int w, int h, Rgb color);

 private:
  int width_, height_;
  std::vector<uint8_t> pixels_;
};

// The PNG file bytes of `image`.
std::string encodePng(const RgbImage& image);

// RFC 4648 base64 with padding, as a data: URI needs it.
std::string base64(const std::string& bytes);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_PNG_IMAGE_H_
