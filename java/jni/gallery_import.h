// FaceClusterEngine.clusterGallery: planned runs over a whole gallery, with
// the Java listener as their progress callback.
#ifndef XVKFC_JAVA_JNI_GALLERY_IMPORT_H_
#define XVKFC_JAVA_JNI_GALLERY_IMPORT_H_

#include <jni.h>

class FaceRecognition;

namespace jni {

// Clusters `features` (rows of 960 floats) under `faceIds` (null: 0..n-1)
// into `existing` (null: none) with clusterInPlannedRuns, calling
// listener.onProgress (null: none) after every run. Returns the resulting
// Cluster[]; null with a Java exception pending when an argument is wrong,
// the library fails (its log line) or the listener throws. A listener that
// throws stops the import, and its exception is the one the caller gets.
jobjectArray importGallery(JNIEnv* env, FaceRecognition& recognition, jobjectArray features,
                           jintArray faceIds, jobjectArray existing, jobject listener);

}  // namespace jni

#endif  // XVKFC_JAVA_JNI_GALLERY_IMPORT_H_
