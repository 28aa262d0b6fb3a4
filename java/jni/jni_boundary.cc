#include "java/jni/jni_boundary.h"

#include <string>

#include "interface/handle_support.h"

namespace jni {

bool raise(JNIEnv* env, const char* className, const char* message) {
  if (env->ExceptionCheck()) return false;
  jclass type = env->FindClass(className);
  if (type == nullptr) return false;  // FindClass left its own error pending
  env->ThrowNew(type, message);
  env->DeleteLocalRef(type);
  return false;
}

bool raiseLibraryFailure(JNIEnv* env, const char* operation, long long code) {
  std::string message = std::string(operation) + " failed (" + std::to_string(code) + ")";
  const char* line = xvkfc::lastLogLine();
  if (line[0] != '\0') message += std::string(": ") + line;
  // Some library lines end in their own newline.
  while (!message.empty() && message.back() == '\n') message.pop_back();
  return raise(env, kIllegalState, message.c_str());
}

}  // namespace jni
