#include "planning/handle_readiness.h"

#include "interface/face_recognition.h"

namespace detail {

bool planningHandleIsReady(const FaceRecognition* handle) {
  return handle != nullptr && handle->recognizer != nullptr &&
         handle->landmarkDetector != nullptr && handle->engine != nullptr &&
         handle->featureBuffer != nullptr;
}

}  // namespace detail
