// Where the JNI glue meets the JVM: Java exceptions raised from native code,
// and the one guard that keeps C++ exceptions from unwinding into a JNI frame.
#ifndef XVKFC_JAVA_JNI_JNI_BOUNDARY_H_
#define XVKFC_JAVA_JNI_JNI_BOUNDARY_H_

#include <jni.h>

#include <exception>
#include <new>

namespace jni {

inline constexpr const char* kIllegalArgument = "java/lang/IllegalArgumentException";
inline constexpr const char* kIllegalState = "java/lang/IllegalStateException";
inline constexpr const char* kNullPointer = "java/lang/NullPointerException";
inline constexpr const char* kOutOfMemory = "java/lang/OutOfMemoryError";

// Raises `className` with `message` unless an exception is already pending
// (the first one tells the cause). Always returns false, for one-line exits.
bool raise(JNIEnv* env, const char* className, const char* message);

// Raises IllegalStateException "<operation> failed (<code>): <last library
// line>" for a library call that returned its failure value `code`.
// REQUIRES: xvkfc::clearLastLogLine() was called before the failing call.
bool raiseLibraryFailure(JNIEnv* env, const char* operation, long long code);

// Runs `body` and returns its result; a C++ exception becomes a pending Java
// exception (OutOfMemoryError for bad_alloc, IllegalStateException for the
// rest) and `fallback` is returned. Every native method runs inside this.
template <typename T, typename Body>
T guarded(JNIEnv* env, T fallback, Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    raise(env, kOutOfMemory, "native memory exhausted");
  } catch (const std::exception& e) {
    raise(env, kIllegalState, e.what());
  } catch (...) {
    raise(env, kIllegalState, "unexpected native failure");
  }
  return fallback;
}

}  // namespace jni

#endif  // XVKFC_JAVA_JNI_JNI_BOUNDARY_H_
