#include "java/jni/gallery_import.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "java/jni/cluster_lists.h"
#include "java/jni/java_arrays.h"
#include "java/jni/jni_boundary.h"
#include "planning/planned_clustering.h"

namespace jni {
namespace {

// Calls listener.onProgress; once it throws, the exception is set aside
// (JNI allows no further calls while one is pending) and every later call
// asks the import to stop.
class ProgressBridge {
 public:
  ProgressBridge(JNIEnv* env, jobject listener) : env_(env), listener_(listener) {
    if (listener_ == nullptr) return;
    jclass type = env_->GetObjectClass(listener_);
    onProgress_ = env_->GetMethodID(type, "onProgress", "(II)Z");
    env_->DeleteLocalRef(type);
  }

  bool found() const { return listener_ == nullptr || onProgress_ != nullptr; }

  bool operator()(int facesDone, int facesTotal) {
    if (thrown_ != nullptr) return false;
    const bool goOn = env_->CallBooleanMethod(listener_, onProgress_, facesDone, facesTotal);
    if (!env_->ExceptionCheck()) return goOn;
    thrown_ = env_->ExceptionOccurred();
    env_->ExceptionClear();
    return false;
  }

  PlannedProgress callback() {
    if (listener_ == nullptr) return nullptr;
    return [this](int done, int total) { return (*this)(done, total); };
  }

  // Raises the listener's exception again, if it threw. Returns true then.
  bool rethrow() {
    if (thrown_ == nullptr) return false;
    env_->Throw(thrown_);
    env_->DeleteLocalRef(thrown_);
    thrown_ = nullptr;
    return true;
  }

 private:
  JNIEnv* env_;
  jobject listener_;
  jmethodID onProgress_ = nullptr;
  jthrowable thrown_ = nullptr;
};

// The planned runs require new face ids that are unique and in no existing
// cluster; checked on the copies, which are what the library reads.
bool idsAreNew(const std::vector<int>& ids, const itf_xvk_clusterinfo& existing) {
  std::vector<int> sorted(ids);
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return false;
  for (int i = 0; i < existing.count; ++i) {
    const itf_xvk_clusteritem& item = existing.items[i];
    for (int k = 0; k < item.faceCount; ++k) {
      if (std::binary_search(sorted.begin(), sorted.end(), item.faceIds[k])) return false;
    }
  }
  return true;
}

}  // namespace

jobjectArray importGallery(JNIEnv* env, FaceRecognition& recognition, jobjectArray features,
                           jintArray faceIds, jobjectArray existing, jobject listener) {
  if (features == nullptr) return raise(env, kNullPointer, "features is null"), nullptr;
  std::vector<float> rows;
  if (!copyFeatureRows(env, features, &rows)) return nullptr;
  const int count = static_cast<int>(rows.size() / xvkfc::kFeatureDim);
  if (count < 1) return raise(env, kIllegalArgument, "no features"), nullptr;
  std::vector<int> ids(count);
  if (faceIds == nullptr) {
    std::iota(ids.begin(), ids.end(), 0);
  } else if (!copyInts(env, faceIds, count, &ids)) {
    return nullptr;
  }
  ClusterListCopy clusters;
  if (!clusters.copyFrom(env, existing)) return nullptr;
  if (!idsAreNew(ids, *clusters.list())) {
    return raise(env, kIllegalArgument, "face ids must be unique and in no existing cluster"),
           nullptr;
  }
  ProgressBridge progress(env, listener);
  if (!progress.found()) return nullptr;  // NoSuchMethodError pending

  itf_xvk_clusterinfo result{0, nullptr};
  xvkfc::clearLastLogLine();
  const int status = clusterInPlannedRuns(
      &recognition, rows.data(), ids.data(), count,
      clusters.list()->count > 0 ? clusters.list() : nullptr, kDefaultRunSize, kDefaultRounds,
      &result, nullptr, nullptr, progress.callback());
  if (status < 0) {
    if (!progress.rethrow()) raiseLibraryFailure(env, "clusterInPlannedRuns", status);
    return nullptr;
  }
  jobjectArray converted = progress.rethrow() ? nullptr : toJavaClusters(env, result);
  recognition.itf_xvk_releaseClusterInfo(&result);
  return converted;
}

}  // namespace jni
