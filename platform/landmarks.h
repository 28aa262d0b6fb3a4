// Reading the landmark detector's result.
#ifndef XVKFC_PLATFORM_LANDMARKS_H_
#define XVKFC_PLATFORM_LANDMARKS_H_

#include "LandmarkInterface.h"

namespace detail {

// The points of the detector's last detection, or null when it found none.
// The detector keeps them in its second member; this is the one place that
// knows it.
inline float* detectedLandmarks(const CLandmarkInterface& detector) {
  return detector.landmarks;
}

}  // namespace detail

#endif  // XVKFC_PLATFORM_LANDMARKS_H_
