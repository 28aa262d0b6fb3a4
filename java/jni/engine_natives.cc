// The native methods of org.xvkfc.NativeEngine: one FaceRecognition handle
// per engine, passed to Java as a jlong. The Java side has checked the
// arguments; every method checks again what could crash the library, so a
// Java caller cannot, and none lets a C++ exception out (jni::guarded).
#include <jni.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"
#include "java/jni/cluster_lists.h"
#include "java/jni/gallery_import.h"
#include "java/jni/java_arrays.h"
#include "java/jni/jni_boundary.h"

namespace {

FaceRecognition* handleOf(jlong handle) {
  return reinterpret_cast<FaceRecognition*>(static_cast<intptr_t>(handle));
}

// Null, with IllegalStateException pending, for a closed engine.
FaceRecognition* openHandle(JNIEnv* env, jlong handle) {
  FaceRecognition* recognition = handleOf(handle);
  if (recognition == nullptr) jni::raise(env, jni::kIllegalState, "the engine is closed");
  return recognition;
}

// The cluster list of the handle's last run as a Cluster[]; the library's
// arrays are given back whatever happens on the Java side.
jobjectArray lastResult(JNIEnv* env, FaceRecognition& recognition) {
  itf_xvk_clusterinfo result{0, nullptr};
  xvkfc::clearLastLogLine();
  const int count = recognition.itf_xvk_getClusterInfo(&result);
  if (count == 0 && xvkfc::lastLogLine()[0] != '\0') {
    jni::raiseLibraryFailure(env, "itf_xvk_getClusterInfo", count);
    return nullptr;
  }
  jobjectArray clusters = jni::toJavaClusters(env, result);
  recognition.itf_xvk_releaseClusterInfo(&result);
  return clusters;
}

}  // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_org_xvkfc_NativeEngine_open(JNIEnv* env, jclass, jstring modelDir) {
  return jni::guarded(env, jlong{0}, [&]() -> jlong {
    if (modelDir == nullptr) return jni::raise(env, jni::kNullPointer, "modelDir is null"), 0;
    auto recognition = std::make_unique<FaceRecognition>();
    const char* path = env->GetStringUTFChars(modelDir, nullptr);
    if (path == nullptr) return 0;  // OutOfMemoryError pending
    xvkfc::clearLastLogLine();
    const int status = recognition->itf_xvk_Init(path);
    env->ReleaseStringUTFChars(modelDir, path);
    if (status != xvkfc::kFeatureDim) {
      jni::raiseLibraryFailure(env, "itf_xvk_Init", status);
      recognition->itf_xvk_Release();
      return 0;
    }
    return static_cast<jlong>(reinterpret_cast<intptr_t>(recognition.release()));
  });
}

JNIEXPORT void JNICALL Java_org_xvkfc_NativeEngine_close(JNIEnv* env, jclass, jlong handle) {
  jni::guarded(env, 0, [&] {
    FaceRecognition* recognition = handleOf(handle);
    if (recognition == nullptr) return 0;
    recognition->itf_xvk_Release();
    delete recognition;
    return 0;
  });
}

JNIEXPORT jfloatArray JNICALL Java_org_xvkfc_NativeEngine_extractFeature(
    JNIEnv* env, jclass, jlong handle, jbyteArray image, jint width, jint height, jint left,
    jint top, jint faceWidth, jint faceHeight) {
  return jni::guarded(env, jfloatArray{nullptr}, [&]() -> jfloatArray {
    FaceRecognition* recognition = openHandle(env, handle);
    if (recognition == nullptr) return nullptr;
    if (image == nullptr) return jni::raise(env, jni::kNullPointer, "image is null"), nullptr;
    const jsize length = env->GetArrayLength(image);
    std::vector<unsigned char> pixels(static_cast<size_t>(length));
    env->GetByteArrayRegion(image, 0, length, reinterpret_cast<jbyte*>(pixels.data()));
    // The library checks the image against its planes itself ("Invalid
    // Image Data"); null is then "no feature", as for a face it cannot find.
    const float* feature = recognition->itf_xvk_extractFeature(
        pixels.data(), length, width, height, itf_xvk_faceroi{left, top, faceWidth, faceHeight});
    if (feature == nullptr) return nullptr;
    return jni::newFloatArray(env, feature, xvkfc::kFeatureDim);
  });
}

JNIEXPORT jint JNICALL Java_org_xvkfc_NativeEngine_compare(JNIEnv* env, jclass, jlong handle,
                                                           jfloatArray a, jfloatArray b) {
  return jni::guarded(env, jint{-1}, [&]() -> jint {
    FaceRecognition* recognition = openHandle(env, handle);
    std::vector<float> first, second;
    if (recognition == nullptr || !jni::copyFeature(env, a, &first) ||
        !jni::copyFeature(env, b, &second)) {
      return -1;
    }
    return recognition->itf_xvk_compareFeature(first.data(), second.data());
  });
}

JNIEXPORT void JNICALL Java_org_xvkfc_NativeEngine_addFace(JNIEnv* env, jclass, jlong handle,
                                                           jfloatArray feature, jint faceId) {
  jni::guarded(env, 0, [&] {
    FaceRecognition* recognition = openHandle(env, handle);
    std::vector<float> copy;
    if (recognition == nullptr || !jni::copyFeature(env, feature, &copy)) return 0;
    xvkfc::clearLastLogLine();
    const int status = recognition->itf_xvk_loadFaceFeature(copy.data(), faceId);
    if (status != 1) jni::raiseLibraryFailure(env, "itf_xvk_loadFaceFeature", status);
    return 0;
  });
}

JNIEXPORT jobjectArray JNICALL Java_org_xvkfc_NativeEngine_cluster(JNIEnv* env, jclass,
                                                                   jlong handle,
                                                                   jobjectArray existing) {
  return jni::guarded(env, jobjectArray{nullptr}, [&]() -> jobjectArray {
    FaceRecognition* recognition = openHandle(env, handle);
    jni::ClusterListCopy clusters;
    if (recognition == nullptr || !clusters.copyFrom(env, existing)) return nullptr;
    xvkfc::clearLastLogLine();
    const int status = recognition->itf_xvk_runClustering(clusters.list());
    if (status != 1) {
      jni::raiseLibraryFailure(env, "itf_xvk_runClustering", status);
      return nullptr;
    }
    return lastResult(env, *recognition);
  });
}

JNIEXPORT jobjectArray JNICALL Java_org_xvkfc_NativeEngine_clusterGallery(
    JNIEnv* env, jclass, jlong handle, jobjectArray features, jintArray faceIds,
    jobjectArray existing, jobject listener) {
  return jni::guarded(env, jobjectArray{nullptr}, [&]() -> jobjectArray {
    FaceRecognition* recognition = openHandle(env, handle);
    if (recognition == nullptr) return nullptr;
    return jni::importGallery(env, *recognition, features, faceIds, existing, listener);
  });
}

JNIEXPORT jfloatArray JNICALL Java_org_xvkfc_NativeEngine_representative(JNIEnv* env, jclass,
                                                                         jlong handle,
                                                                         jobjectArray features) {
  return jni::guarded(env, jfloatArray{nullptr}, [&]() -> jfloatArray {
    FaceRecognition* recognition = openHandle(env, handle);
    if (recognition == nullptr) return nullptr;
    if (features == nullptr) return jni::raise(env, jni::kNullPointer, "features is null"), nullptr;
    std::vector<float> rows;
    if (!jni::copyFeatureRows(env, features, &rows)) return nullptr;
    const int count = static_cast<int>(rows.size() / xvkfc::kFeatureDim);
    if (count < 1) return jni::raise(env, jni::kIllegalArgument, "no features"), nullptr;
    xvkfc::clearLastLogLine();
    std::unique_ptr<float, decltype(&std::free)> chosen(
        recognition->itf_xvk_getClusterFeature(rows.data(), count), &std::free);
    // Two or more features become the queued faces of the next run: they
    // are no faces of the application's.
    if (count > 1) xvkfc::discardQueuedFaces(recognition);
    if (chosen == nullptr) {
      jni::raiseLibraryFailure(env, "itf_xvk_getClusterFeature", 0);
      return nullptr;
    }
    return jni::newFloatArray(env, chosen.get(), xvkfc::kFeatureDim);
  });
}

JNIEXPORT jint JNICALL Java_org_xvkfc_NativeEngine_recommend(JNIEnv* env, jclass, jlong handle,
                                                             jobjectArray clusters,
                                                             jfloatArray feature) {
  return jni::guarded(env, jint{-1}, [&]() -> jint {
    FaceRecognition* recognition = openHandle(env, handle);
    jni::ClusterListCopy list;
    std::vector<float> copy;
    if (recognition == nullptr || !list.copyFrom(env, clusters) ||
        !jni::copyFeature(env, feature, &copy)) {
      return -1;
    }
    if (list.list()->count < 1) return -1;
    return recognition->itf_xvk_recommendCluster(list.list(), copy.data(), list.list()->count);
  });
}

}  // extern "C"
