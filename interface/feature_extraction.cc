#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "FRecogInterface.h"
#include "LandmarkInterface.h"
#include "clustering/thresholds.h"
#include "interface/face_recognition.h"
#include "interface/handle_readiness.h"
#include "platform/call_boundary.h"
#include "interface/yuv_convert.h"
#include "numeric/score_scale.h"
#include "platform/landmarks.h"
#include "platform/log.h"

namespace {

// Passed to the landmark detector as its channel count and flags.
constexpr int kLandmarkChannels = 3;
constexpr int kLandmarkFlags = 0;

// The extractor reads eleven option flags; only the last one is set.
constexpr int kExtractorOptionCount = 11;

struct FreeDeleter {
  void operator()(void* block) const { std::free(block); }
};

// Whether the image arguments describe a frame the library can read: a
// non-null buffer, positive sizes, a buffer at least as long as the planar
// 4:2:0 frame, a BGR copy whose byte count fits in an int, and a face
// rectangle whose right and bottom edges (left + width, top + height) fit in
// an int. All of it in 64 bits, so no check can overflow; the sizes stop a
// caller from making the library read or write past its buffers, the edges
// keep the landmark detector's arithmetic inside int.
bool isValidImage(const unsigned char* image, int dataLength, int width, int height,
                  const itf_xvk_faceroi& roi) {
  if (image == nullptr || dataLength <= 0 || width <= 0 || height <= 0) return false;
  if (detail::planarYuv420Size(width, height) > dataLength) return false;
  if (static_cast<int64_t>(width) * height * 3 > INT_MAX) return false;
  const auto fitsInt = [](int64_t value) { return value >= INT_MIN && value <= INT_MAX; };
  return fitsInt(static_cast<int64_t>(roi.left) + roi.width) &&
         fitsInt(static_cast<int64_t>(roi.top) + roi.height);
}

float* extractFeature(FaceRecognition& handle, unsigned char* image, int dataLength, int width,
                      int height, itf_xvk_faceroi roi) {
  if (!isValidImage(image, dataLength, width, height, roi)) {
    detail::logDebug("Invalid Image Data");
    return nullptr;
  }

  handle.landmarkDetector->RunLandmarkDetection(image, width, height, kLandmarkChannels,
                                                kLandmarkFlags, roi.left, roi.top, roi.width,
                                                roi.height);
  float* landmarks = detail::detectedLandmarks(*handle.landmarkDetector);
  if (landmarks == nullptr) return nullptr;

  bool optionFlags[kExtractorOptionCount] = {};
  optionFlags[kExtractorOptionCount - 1] = true;

  std::unique_ptr<unsigned char, FreeDeleter> bgr(
      static_cast<unsigned char*>(std::malloc(static_cast<size_t>(width) * height * 3)));
  if (bgr == nullptr) {
    detail::logDebug("malloc fail!!!(bgr image in itf_xvk_extractFeature");
    return nullptr;
  }
  yuv420_to_bgr24(image, width, height, bgr.get());

  std::unique_ptr<float, FreeDeleter> feature(handle.recognizer->RunFeatureExtraction(
      bgr.get(), width, height, landmarks, optionFlags, TAVOFEImageFormat::kBgr24));
  bgr.reset();
  if (feature == nullptr) return nullptr;

  std::memcpy(handle.featureBuffer, feature.get(), detail::kFeatureDim * sizeof(float));
  return handle.featureBuffer;
}

}  // namespace

float* FaceRecognition::itf_xvk_extractFeature(unsigned char* image, int dataLength, int width,
                                               int height, itf_xvk_faceroi roi,
                                               itf_xvk_landmark* /*landmarks: never touched*/) {
  return detail::callOnReadyHandle(*this, "itf_xvk_extractFeature", static_cast<float*>(nullptr),
                                   [&] { return extractFeature(*this, image, dataLength, width, height, roi); });
}

float* FaceRecognition::itf_xvk_extractFeature(unsigned char* image, int dataLength, int width,
                                               int height, itf_xvk_faceroi roi) {
  return detail::callOnReadyHandle(*this, "itf_xvk_extractFeature", static_cast<float*>(nullptr),
                                   [&] { return extractFeature(*this, image, dataLength, width, height, roi); });
}

int FaceRecognition::itf_xvk_compareFeature(float* reg, float* test) {
  return detail::callOnReadyHandle(*this, "itf_xvk_compareFeature", -1, [&] {
    if (reg == nullptr) {
      detail::logDebug("reg == NULL\n");
      return -1;
    }
    if (test == nullptr) {
      detail::logDebug("test == NULL\n");
      return -1;
    }
    const int score = detail::scoreOn1023Scale(recognizer->RunComparison(reg, test));
    return std::clamp(score, 0, detail::kScoreScaleMax);
  });
}

int FaceRecognition::itf_xvk_getDim() {
  return detail::guardPublicCall("itf_xvk_getDim", detail::kFeatureDim,
                                 [] { return detail::kFeatureDim; });
}
