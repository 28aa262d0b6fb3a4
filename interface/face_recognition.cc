#include "interface/face_recognition.h"

#include "FRecogInterface.h"
#include "LandmarkInterface.h"
#include "clustering/face_clustering_system.h"
#include "clustering/thresholds.h"
#include "platform/call_boundary.h"
#include "platform/log.h"

char itf_FACE_SOLUTION_Version[1000] = "__ITF__FACESOLUTION__Version : 2016.11.24(M)";

namespace {

// The detector passed to the landmark library's Init.
constexpr int kLandmarkMode = 1;

void destroyRecognizer(CFRecogInterface*& recognizer) {
  if (recognizer == nullptr) return;
  recognizer->Release();
  delete recognizer;
  recognizer = nullptr;
}

void destroyLandmarkDetector(CLandmarkInterface*& detector) {
  if (detector == nullptr) return;
  detector->Release();
  delete detector;
  detector = nullptr;
}

}  // namespace

int FaceRecognition::itf_xvk_Init(const char* modelPath) {
  const int status = detail::guardPublicCall("itf_xvk_Init", 0, [&] {
    detail::logDebug("init FC engine (%s)", itf_FACE_SOLUTION_Version);

    // Each object is replaced only once the previous library initialised, so
    // an early return leaves the later members as they were.
    destroyRecognizer(recognizer);
    recognizer = new CFRecogInterface();
    const int recognizerStatus = recognizer->Init(detail::kFeatureDim, modelPath);
    if (recognizerStatus < 1) return recognizerStatus;

    destroyLandmarkDetector(landmarkDetector);
    landmarkDetector = new CLandmarkInterface();
    const int landmarkStatus = landmarkDetector->Init(kLandmarkMode, modelPath);
    if (landmarkStatus < 1) return landmarkStatus;

    delete engine;
    engine = nullptr;
    engine = new FaceClusteringSystem();
    const int engineStatus = engine->init(recognizer);
    if (engineStatus < 1) return engineStatus;

    delete[] featureBuffer;
    featureBuffer = nullptr;
    featureBuffer = new float[detail::kFeatureDim];
    return detail::kFeatureDim;
  });
  // After a failed Init the engine may still point at a recognizer that
  // Init deleted, or share one that never initialised: it is cut off, which
  // is what makes the handle not ready (interface/handle_readiness.h).
  if (status != detail::kFeatureDim && engine != nullptr) engine->recognizer = nullptr;
  return status;
}

int FaceRecognition::itf_xvk_Release() {
  return detail::guardPublicCall("itf_xvk_Release", 1, [&] {
    detail::logDebug("release FC engine");
    destroyRecognizer(recognizer);
    destroyLandmarkDetector(landmarkDetector);
    delete engine;
    engine = nullptr;
    delete[] featureBuffer;
    featureBuffer = nullptr;
    return 1;
  });
}
