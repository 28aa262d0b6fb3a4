// Copies between Java arrays and native buffers. Every copy goes through the
// JNI region calls: no Java array stays pinned while the library runs.
//
// Each function returns false with a Java exception pending (NullPointer-
// or IllegalArgumentException) when the array is null or of the wrong length.
// The Java classes check the same before calling; these checks are what keep
// an array changed by another thread in between from reaching the library.
#ifndef XVKFC_JAVA_JNI_JAVA_ARRAYS_H_
#define XVKFC_JAVA_JNI_JAVA_ARRAYS_H_

#include <jni.h>

#include <vector>

namespace jni {

// Copies a feature: exactly xvkfc::kFeatureDim floats.
bool copyFeature(JNIEnv* env, jfloatArray feature, std::vector<float>* out);

// Copies rows of features into one row-major buffer (rows x 960 floats).
// REQUIRES: `rows` is not null.
bool copyFeatureRows(JNIEnv* env, jobjectArray rows, std::vector<float>* out);

// Copies `ints`, which must hold `expectedLength` ints (any length for -1).
bool copyInts(JNIEnv* env, jintArray ints, jsize expectedLength, std::vector<int>* out);

// A new Java float[] holding `count` floats of `values`; null with
// OutOfMemoryError pending when the JVM cannot allocate it.
jfloatArray newFloatArray(JNIEnv* env, const float* values, jsize count);

// A new Java int[] likewise.
jintArray newIntArray(JNIEnv* env, const int* values, jsize count);

}  // namespace jni

#endif  // XVKFC_JAVA_JNI_JAVA_ARRAYS_H_
