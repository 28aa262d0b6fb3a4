#include "interface/handle_support.h"

#include "clustering/feature_reset.h"
#include "clustering/thresholds.h"
#include "interface/face_recognition.h"
#include "interface/handle_readiness.h"
#include "platform/log.h"

static_assert(xvkfc::kFeatureDim == detail::kFeatureDim);
static_assert(xvkfc::kSplitSimilarity == detail::kSplitSimilarity);
static_assert(xvkfc::kMergeBestPairSimilarity == detail::kMergeBestPairSimilarity);
static_assert(xvkfc::kOutlierJoinSimilarity == detail::kOutlierJoinSimilarity);
static_assert(xvkfc::kClusterLinkSimilarity == detail::kClusterLinkSimilarity);

namespace xvkfc {

bool isHandleReady(const FaceRecognition* handle) {
  return handle != nullptr && detail::isReadyHandle(*handle);
}

int discardQueuedFaces(FaceRecognition* handle) {
  if (handle == nullptr) {
    detail::logDebug("discardQueuedFaces: null handle");
    return -1;
  }
  return detail::callOnReadyHandle(*handle, "discardQueuedFaces", -1, [&] {
    detail::dropLoadedFaces(*handle->engine);
    return 1;
  });
}

const char* lastLogLine() { return detail::lastLoggedLine(); }

void clearLastLogLine() { detail::forgetLastLoggedLine(); }

}  // namespace xvkfc
