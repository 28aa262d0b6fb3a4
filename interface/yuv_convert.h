// Conversion of planar YUV 4:2:0 frames to blue-green-red bytes.
//
// Source layout (one contiguous buffer, no row padding): a Y plane of
// width x height bytes, then a U (Cb) plane and a V (Cr) plane of
// ((width + 1) / 2) x ((height + 1) / 2) bytes each.
//
// Per pixel, with U and V taken as signed offsets from 128 and computed in
// double precision:
//   B = Y + 1.732446 U,  G = Y - 0.698001 V - 0.337633 U,  R = Y + 1.370705 V,
// each truncated toward zero and then clamped to 0..255. The last column of
// an odd width and the last row of an odd height take their chroma from one
// pixel earlier (column width - 2, row height - 2) rather than from their own
// chroma sample; frames of this library have always been converted that way.
//
// Both converters are plain functions of their arguments: they start no
// threads, keep no state and may run concurrently on distinct buffers.
#ifndef XVKFC_INTERFACE_YUV_CONVERT_H_
#define XVKFC_INTERFACE_YUV_CONVERT_H_

#include <cstdint>

#include "platform/export.h"

// Converts `src` into packed pixels: dst[3 * (y * width + x)] holds blue,
// then green, then red. Does nothing when width or height is less than 1.
// REQUIRES: src holds the planar 4:2:0 frame of width x height pixels.
// REQUIRES: dst holds width * height * 3 bytes.
XVKFC_EXPORT void yuv420_to_bgr24(unsigned char* src, int width, int height, unsigned char* dst);

// The same conversion into three planes of width * height bytes each: pixel
// (x, y) goes to index y * width + x of dstB, dstG and dstR. Does nothing
// when width or height is less than 1.
// REQUIRES: src as for yuv420_to_bgr24; each destination holds width * height
// bytes.
XVKFC_EXPORT void yuv420_to_bgr(unsigned char* src, unsigned char* dstB, unsigned char* dstG,
                                unsigned char* dstR, int width, int height);

namespace detail {

// Bytes of a planar 4:2:0 frame of width x height pixels:
// width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2). Computed in
// 64 bits so that any two positive ints give the exact size.
// REQUIRES: width >= 1 and height >= 1.
inline int64_t planarYuv420Size(int width, int height) {
  const int64_t chromaWidth = (static_cast<int64_t>(width) + 1) / 2;
  const int64_t chromaHeight = (static_cast<int64_t>(height) + 1) / 2;
  return static_cast<int64_t>(width) * height + 2 * chromaWidth * chromaHeight;
}

}  // namespace detail

#endif  // XVKFC_INTERFACE_YUV_CONVERT_H_
