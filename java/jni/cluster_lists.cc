#include "java/jni/cluster_lists.h"

#include "interface/handle_support.h"
#include "java/jni/java_arrays.h"
#include "java/jni/jni_boundary.h"

namespace jni {
namespace {

constexpr const char* kClusterClass = "org/xvkfc/Cluster";

// Looked up per call rather than cached in global references: nothing to
// release, and a lookup costs little next to a clustering run.
struct ClusterFields {
  jclass type = nullptr;
  jfieldID id = nullptr, faceIds = nullptr, feature = nullptr, representative = nullptr;
  jmethodID constructor = nullptr;

  explicit ClusterFields(JNIEnv* env) : type(env->FindClass(kClusterClass)) {
    if (type == nullptr) return;
    id = env->GetFieldID(type, "id", "I");
    if (id != nullptr) faceIds = env->GetFieldID(type, "faceIds", "[I");
    if (faceIds != nullptr) feature = env->GetFieldID(type, "feature", "[F");
    if (feature != nullptr) representative = env->GetFieldID(type, "representativeFaceId", "I");
    if (representative != nullptr) constructor = env->GetMethodID(type, "<init>", "(I[I[FI)V");
  }
  bool found() const { return constructor != nullptr; }
};

}  // namespace

bool ClusterListCopy::copyFrom(JNIEnv* env, jobjectArray clusters) {
  const jsize count = clusters == nullptr ? 0 : env->GetArrayLength(clusters);
  if (count == 0) return true;
  ClusterFields fields(env);
  if (!fields.found()) return false;
  items_.resize(count);
  faceIds_.resize(count);
  features_.resize(count);
  bool ok = true;
  for (jsize i = 0; i < count && ok; ++i) {
    jobject cluster = env->GetObjectArrayElement(clusters, i);
    if (cluster == nullptr) {
      ok = raise(env, kNullPointer, "a cluster is null");
      break;
    }
    auto ids = static_cast<jintArray>(env->GetObjectField(cluster, fields.faceIds));
    auto feature = static_cast<jfloatArray>(env->GetObjectField(cluster, fields.feature));
    itf_xvk_clusteritem& item = items_[i];
    item.clusterId = env->GetIntField(cluster, fields.id);
    item.repFaceId = env->GetIntField(cluster, fields.representative);
    ok = copyInts(env, ids, -1, &faceIds_[i]);
    item.faceCount = static_cast<int>(faceIds_[i].size());
    item.faceIds = faceIds_[i].data();
    // A Cluster keeps no empty feature: null stands for "none" (featureDim 0).
    if (ok && feature != nullptr) ok = copyFeature(env, feature, &features_[i]);
    item.featureDim = static_cast<int>(features_[i].size());
    item.feature = features_[i].empty() ? nullptr : features_[i].data();
    env->DeleteLocalRef(feature);
    env->DeleteLocalRef(ids);
    env->DeleteLocalRef(cluster);
  }
  env->DeleteLocalRef(fields.type);
  if (!ok) return false;
  list_ = {count, items_.data()};
  return true;
}

jobjectArray toJavaClusters(JNIEnv* env, const itf_xvk_clusterinfo& list) {
  ClusterFields fields(env);
  if (!fields.found()) return nullptr;
  const jsize count = list.count > 0 ? list.count : 0;
  jobjectArray clusters = env->NewObjectArray(count, fields.type, nullptr);
  for (jsize i = 0; i < count && clusters != nullptr; ++i) {
    const itf_xvk_clusteritem& item = list.items[i];
    jintArray ids = newIntArray(env, item.faceIds, item.faceCount);
    jfloatArray feature = nullptr;
    if (ids != nullptr && item.featureDim == xvkfc::kFeatureDim && item.feature != nullptr) {
      feature = newFloatArray(env, item.feature, item.featureDim);
    }
    jobject cluster = nullptr;
    if (!env->ExceptionCheck()) {
      cluster = env->NewObject(fields.type, fields.constructor, item.clusterId, ids, feature,
                               item.repFaceId);
    }
    if (cluster != nullptr) env->SetObjectArrayElement(clusters, i, cluster);
    env->DeleteLocalRef(cluster);
    env->DeleteLocalRef(feature);
    env->DeleteLocalRef(ids);
    if (env->ExceptionCheck()) {
      env->DeleteLocalRef(clusters);
      clusters = nullptr;
    }
  }
  env->DeleteLocalRef(fields.type);
  return clusters;
}

}  // namespace jni
