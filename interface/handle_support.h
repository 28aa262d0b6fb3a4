// What code built on the public interface (planned runs, the command-line
// program, language bindings) needs from a handle beyond the itf_xvk_*
// operations: the feature size, the similarity levels the engine decides at,
// whether a handle is ready, and a way to drop queued faces.
//
// Conventions as in interface/face_recognition.h: no exception leaves, the
// handle's thread rule holds, failures are logged.
#ifndef XVKFC_INTERFACE_HANDLE_SUPPORT_H_
#define XVKFC_INTERFACE_HANDLE_SUPPORT_H_

#include "platform/export.h"

class FaceRecognition;

namespace xvkfc {

// Floats in one face feature: what itf_xvk_Init and itf_xvk_getDim return.
inline constexpr int kFeatureDim = 960;

// Similarity levels of the clustering run, as kernel values (score + 1) / 2
// on 0..1. Fixed; the engine checks at build time that they are its own.
// A cluster is cut in two when its mean inner similarity or any pair inside
// it is below this.
inline constexpr float kSplitSimilarity = 0.69f;
// Two clusters, one of two faces or fewer, join only when their best pair
// reaches this.
inline constexpr float kMergeBestPairSimilarity = 0.74f;
// An unclustered new face joins an application cluster whose feature it
// matches at this or more.
inline constexpr float kOutlierJoinSimilarity = 0.9f;
// Clusters whose representative features match at this or more are united.
inline constexpr float kClusterLinkSimilarity = 0.87f;

// True when `handle` is not null and ready: its last itf_xvk_Init returned
// 960 and no itf_xvk_Release came after it. Logs nothing.
XVKFC_EXPORT bool isHandleReady(const FaceRecognition* handle);

// Forgets every face queued with itf_xvk_loadFaceFeature since the last run;
// the result of the last run stays readable. Returns 1; -1 with one logged
// line when the handle is null or not ready, or when memory runs out (the
// queue is then empty all the same).
XVKFC_EXPORT int discardQueuedFaces(FaceRecognition* handle);

// The last line the library logged on the calling thread (without the tag),
// "" before the first line or after clearLastLogLine. Lets a binding report
// why an operation returned its failure value: clear, call, and read this
// when the result says failure. The text is the thread's own and stays
// valid until the library logs again on this thread. Never null.
XVKFC_EXPORT const char* lastLogLine();
XVKFC_EXPORT void clearLastLogLine();

}  // namespace xvkfc

#endif  // XVKFC_INTERFACE_HANDLE_SUPPORT_H_
