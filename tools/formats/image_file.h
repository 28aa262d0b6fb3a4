// Images that `xvkfc extract` reads: raw planar YUV 4:2:0 (the layout the
// library takes, size given on the command line), PNG or JPEG (size from
// the file), the latter two converted here to planar YUV 4:2:0.
#ifndef XVKFC_TOOLS_FORMATS_IMAGE_FILE_H_
#define XVKFC_TOOLS_FORMATS_IMAGE_FILE_H_

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

// The most pixels a PNG or JPEG image may have: 2^27, a 16384 x 8192 image,
// past every camera. Decoding takes about 12 bytes a pixel (RGB, luma as
// double, the YUV planes), 1.5 GiB at this size; a few bytes of a JPEG
// header can claim 2^48.
inline constexpr size_t kMaxImagePixels = size_t{1} << 27;

struct YuvImage {
  int width = 0, height = 0;
  std::vector<unsigned char> planes;  // Y, then U and V of ((w+1)/2) x ((h+1)/2)
};

// True for a PNG or JPEG file name (.png, .jpg, .jpeg, any case).
bool isCompressedImageName(const std::string& path);

// Decodes the PNG or JPEG bytes `bytes` (named `source` in messages) and
// converts them to planar YUV 4:2:0 with full-range BT.601 weights, the
// inverse of the library's converter; chroma is the mean of each 2 x 2
// block. Throws ToolError when the bytes are not a PNG or JPEG image, or
// when the image has more than `maxPixels` pixels (checked before decoding).
YuvImage decodeToYuv420(const std::string& bytes, const std::string& source,
                        size_t maxPixels = kMaxImagePixels);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_IMAGE_FILE_H_
