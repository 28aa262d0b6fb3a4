// Host stand-in for libTAVO_LD: places five landmark points from the face
// rectangle's geometry. It makes the pipeline run on a workstation; it does
// not look at the pixels.
#include <cstdint>

#include "LandmarkInterface.h"
#include "face_points.h"
#include "host_model_path.h"

namespace {

// The detector's private state: storage for the points of the last detection.
struct DetectorState {
  float points[2 * host::kPointCount];
};

// Whether the rectangle covers at least one pixel of a width x height image.
// Computed in 64 bits so that no rectangle can overflow.
bool overlapsImage(int width, int height, int left, int top, int rectWidth, int rectHeight) {
  if (width < 1 || height < 1 || rectWidth < 1 || rectHeight < 1) return false;
  return left < width && top<height&& static_cast<int64_t>(left) + rectWidth> 0 &&
         static_cast<int64_t>(top) + rectHeight > 0;
}

}  // namespace

CLandmarkInterface::CLandmarkInterface() : state(new DetectorState()), landmarks(nullptr) {}

CLandmarkInterface::~CLandmarkInterface() { delete static_cast<DetectorState*>(state); }

int CLandmarkInterface::Init(int, const char* modelPath) {
  return host::isReadableDirectory(modelPath) ? 1 : -1;
}

int CLandmarkInterface::RunLandmarkDetection(unsigned char* image, int width, int height, int, int,
                                             int left, int top, int rectWidth, int rectHeight) {
  landmarks = nullptr;
  if (image == nullptr || !overlapsImage(width, height, left, top, rectWidth, rectHeight)) {
    return 0;
  }
  float* points = static_cast<DetectorState*>(state)->points;
  host::placeFacePoints({left, top, rectWidth, rectHeight}, points);
  landmarks = points;
  return host::kPointCount;
}

int CLandmarkInterface::Release() {
  landmarks = nullptr;
  return 1;
}
