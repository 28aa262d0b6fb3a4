// Shared by the host stand-ins: where the stand-in landmark detector puts its
// five points inside the face rectangle, and how the stand-in extractor gets
// the rectangle back from them.
#ifndef XVKFC_PLATFORM_HOST_FACE_POINTS_H_
#define XVKFC_PLATFORM_HOST_FACE_POINTS_H_

#include <cmath>
#include <initializer_list>

namespace host {

inline constexpr int kPointCount = 5;

// A point as fractions of the rectangle's width and height from its top-left
// corner.
struct RelativePoint {
  float x, y;
};

// Left eye, right eye, nose tip, left and right mouth corner: proportions of
// a frontal face filling its rectangle.
inline constexpr RelativePoint kFacePoints[kPointCount] = {
    {0.3f, 0.4f}, {0.7f, 0.4f}, {0.5f, 0.6f}, {0.35f, 0.8f}, {0.65f, 0.8f}};

struct Rect {
  int left, top, width, height;
};

// Writes the five points of `face` as x, y pairs into points[0..9].
inline void placeFacePoints(const Rect& face, float* points) {
  for (int i = 0; i < kPointCount; ++i) {
    points[2 * i] = static_cast<float>(face.left + kFacePoints[i].x * face.width);
    points[2 * i + 1] = static_cast<float>(face.top + kFacePoints[i].y * face.height);
  }
}

// Recovers the rectangle whose points placeFacePoints wrote: the eyes fix the
// left edge and the width, eyes and mouth corners the top edge and the
// height. Rounding to whole pixels undoes the float rounding of the points.
// Returns false when the points give no rectangle with int coordinates.
inline bool faceFromPoints(const float* points, Rect* face) {
  const RelativePoint& eye = kFacePoints[0];
  const double width = (static_cast<double>(points[2]) - points[0]) / (kFacePoints[1].x - eye.x);
  const double height = (static_cast<double>(points[7]) - points[1]) / (kFacePoints[3].y - eye.y);
  const double left = points[0] - eye.x * width;
  const double top = points[1] - eye.y * height;
  for (double value : {width, height, left, top}) {
    // No image is a billion pixels across; the test also rejects NaN.
    if (!(std::fabs(value) < 1e9)) return false;
  }
  face->width = static_cast<int>(std::lround(width));
  face->height = static_cast<int>(std::lround(height));
  face->left = static_cast<int>(std::lround(left));
  face->top = static_cast<int>(std::lround(top));
  return true;
}

}  // namespace host

#endif  // XVKFC_PLATFORM_HOST_FACE_POINTS_H_
