# xvkfc::android_log: the Android logging library. On a device it is the
# system liblog; on Linux it is Debian's android-liblog-dev, which keeps its
# header in an "android" include folder and its library in an "android"
# subfolder of the multiarch library folder.
add_library(xvkfc_android_log INTERFACE)
add_library(xvkfc::android_log ALIAS xvkfc_android_log)

if(ANDROID)
  target_link_libraries(xvkfc_android_log INTERFACE log)
else()
  find_path(XVKFC_ANDROID_LOG_INCLUDE_DIR android/log.h
            PATHS /usr/include/android NO_DEFAULT_PATH)
  set(_log_dirs /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
  find_library(XVKFC_ANDROID_LOG_LIBRARY NAMES log
               PATHS ${_log_dirs} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT XVKFC_ANDROID_LOG_INCLUDE_DIR OR NOT XVKFC_ANDROID_LOG_LIBRARY)
    message(FATAL_ERROR
      "liblog not found: install android-liblog-dev (for a cross build, the "
      "package of the target architecture, e.g. android-liblog-dev:armhf). "
      "scripts/test.sh installs it.")
  endif()
  target_include_directories(xvkfc_android_log SYSTEM INTERFACE
    $<BUILD_INTERFACE:${XVKFC_ANDROID_LOG_INCLUDE_DIR}>)
  target_link_libraries(xvkfc_android_log INTERFACE
    $<BUILD_INTERFACE:${XVKFC_ANDROID_LOG_LIBRARY}>)
endif()
