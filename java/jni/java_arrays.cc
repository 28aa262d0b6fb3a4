#include "java/jni/java_arrays.h"

#include "interface/handle_support.h"
#include "java/jni/jni_boundary.h"

namespace jni {

bool copyFeature(JNIEnv* env, jfloatArray feature, std::vector<float>* out) {
  if (feature == nullptr) return raise(env, kNullPointer, "feature is null");
  if (env->GetArrayLength(feature) != xvkfc::kFeatureDim) {
    return raise(env, kIllegalArgument, "a feature is 960 floats");
  }
  out->resize(xvkfc::kFeatureDim);
  env->GetFloatArrayRegion(feature, 0, xvkfc::kFeatureDim, out->data());
  return !env->ExceptionCheck();
}

bool copyFeatureRows(JNIEnv* env, jobjectArray rows, std::vector<float>* out) {
  const jsize count = env->GetArrayLength(rows);
  out->resize(static_cast<size_t>(count) * xvkfc::kFeatureDim);
  for (jsize i = 0; i < count; ++i) {
    auto row = static_cast<jfloatArray>(env->GetObjectArrayElement(rows, i));
    if (row == nullptr) return raise(env, kNullPointer, "a feature row is null");
    const bool rightLength = env->GetArrayLength(row) == xvkfc::kFeatureDim;
    if (rightLength) {
      env->GetFloatArrayRegion(row, 0, xvkfc::kFeatureDim,
                               out->data() + static_cast<size_t>(i) * xvkfc::kFeatureDim);
    }
    env->DeleteLocalRef(row);
    if (!rightLength) return raise(env, kIllegalArgument, "a feature is 960 floats");
    if (env->ExceptionCheck()) return false;
  }
  return true;
}

bool copyInts(JNIEnv* env, jintArray ints, jsize expectedLength, std::vector<int>* out) {
  if (ints == nullptr) return raise(env, kNullPointer, "int array is null");
  const jsize length = env->GetArrayLength(ints);
  if (expectedLength >= 0 && length != expectedLength) {
    return raise(env, kIllegalArgument, "int array of the wrong length");
  }
  out->resize(static_cast<size_t>(length));
  static_assert(sizeof(jint) == sizeof(int));
  env->GetIntArrayRegion(ints, 0, length, reinterpret_cast<jint*>(out->data()));
  return !env->ExceptionCheck();
}

jfloatArray newFloatArray(JNIEnv* env, const float* values, jsize count) {
  jfloatArray array = env->NewFloatArray(count);
  if (array != nullptr && count > 0) env->SetFloatArrayRegion(array, 0, count, values);
  return array;
}

jintArray newIntArray(JNIEnv* env, const int* values, jsize count) {
  jintArray array = env->NewIntArray(count);
  if (array != nullptr && count > 0) {
    env->SetIntArrayRegion(array, 0, count, reinterpret_cast<const jint*>(values));
  }
  return array;
}

}  // namespace jni
