// Whether a FaceRecognition handle can serve an operation. Every itf_xvk_*
// operation that uses the handle's objects asks here first, and so may any
// layer built on the public interface.
#ifndef XVKFC_INTERFACE_HANDLE_READINESS_H_
#define XVKFC_INTERFACE_HANDLE_READINESS_H_

#include "clustering/face_clustering_system.h"
#include "interface/face_recognition.h"
#include "platform/call_boundary.h"
#include "platform/log.h"

namespace detail {

// True when the last itf_xvk_Init returned 960 and no itf_xvk_Release came
// after it: every owned object exists and the engine compares with the
// handle's own recognizer. itf_xvk_Init clears the engine's recognizer
// whenever it fails, so a handle whose engine still knows a recognizer that
// Init replaced (or deleted) is never taken for a ready one.
inline bool isReadyHandle(const FaceRecognition& handle) {
  return handle.recognizer != nullptr && handle.landmarkDetector != nullptr &&
         handle.engine != nullptr && handle.featureBuffer != nullptr &&
         handle.engine->recognizer == handle.recognizer;
}

// isReadyHandle, logging one line that names `operation` when the handle is
// not ready.
inline bool requireReadyHandle(const FaceRecognition& handle, const char* operation) {
  if (isReadyHandle(handle)) return true;
  logDebug("%s: the handle is not ready (no successful itf_xvk_Init)", operation);
  return false;
}

// The boundary of every itf_xvk_* operation that uses the handle's objects:
// `failure` with one line when the handle is not ready, otherwise `body`
// under guardPublicCall.
template <typename Result, typename Body>
Result callOnReadyHandle(const FaceRecognition& handle, const char* operation, Result failure,
                         Body&& body) {
  return guardPublicCall(operation, failure, [&]() -> Result {
    if (!requireReadyHandle(handle, operation)) return failure;
    return body();
  });
}

}  // namespace detail

#endif  // XVKFC_INTERFACE_HANDLE_READINESS_H_
