# The android-armeabi-v7a preset's toolchain: the NDK's own toolchain file,
# found through ANDROID_NDK, with one plain message when it is not set
# (without this the preset fails on a toolchain path that starts with "/build").
if(NOT DEFINED ENV{ANDROID_NDK} OR "$ENV{ANDROID_NDK}" STREQUAL "")
  message(FATAL_ERROR
    "ANDROID_NDK is not set: export ANDROID_NDK=/path/to/android-ndk before "
    "'cmake --preset android-armeabi-v7a'.")
endif()
if(NOT EXISTS "$ENV{ANDROID_NDK}/build/cmake/android.toolchain.cmake")
  message(FATAL_ERROR
    "ANDROID_NDK=$ENV{ANDROID_NDK} is not an Android NDK folder "
    "(no build/cmake/android.toolchain.cmake in it).")
endif()
include("$ENV{ANDROID_NDK}/build/cmake/android.toolchain.cmake")
