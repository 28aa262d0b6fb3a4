// Whether a FaceRecognition handle can serve the planning operations.
#ifndef XVKFC_PLANNING_HANDLE_READINESS_H_
#define XVKFC_PLANNING_HANDLE_READINESS_H_

class FaceRecognition;

namespace detail {

// True when itf_xvk_Init completed on `handle`: every member it builds is
// set. False for a null handle. The one place the planning layer decides
// readiness.
bool planningHandleIsReady(const FaceRecognition* handle);

}  // namespace detail

#endif  // XVKFC_PLANNING_HANDLE_READINESS_H_
