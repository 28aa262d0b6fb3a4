# What the Java binding builds with. Sets XVKFC_JNI_FOUND when jni.h is
# there (XVKFC_JNI_INCLUDE_DIRS off Android) and Java_JAVAC_EXECUTABLE when a
# JDK is, for the jar and the JVM tests.
#
# FindJNI is not used: it also wants libjvm of the target architecture,
# which a cross build has no use for (the library never links the JVM).
if(ANDROID)
  # The NDK's sysroot carries jni.h.
  set(XVKFC_JNI_FOUND TRUE)
  return()
endif()

find_package(Java 1.8 COMPONENTS Development QUIET)
if(Java_JAVAC_EXECUTABLE)
  # Here, at the top, so that add_jar has its settings in every folder.
  include(UseJava)
endif()
set(_jdk_include_hints)
if(DEFINED ENV{JAVA_HOME})
  list(APPEND _jdk_include_hints $ENV{JAVA_HOME}/include)
endif()
if(Java_JAVAC_EXECUTABLE)
  # /usr/bin/javac is a link into the JDK, whose include folder is beside bin.
  get_filename_component(_javac ${Java_JAVAC_EXECUTABLE} REALPATH)
  get_filename_component(_jdk ${_javac} DIRECTORY)
  list(APPEND _jdk_include_hints ${_jdk}/../include)
endif()
find_path(XVKFC_JNI_INCLUDE_DIR jni.h
  HINTS ${_jdk_include_hints}
  PATHS /usr/lib/jvm/default-java/include
  NO_CMAKE_FIND_ROOT_PATH)
find_path(XVKFC_JNI_MD_INCLUDE_DIR jni_md.h
  HINTS ${XVKFC_JNI_INCLUDE_DIR}/linux
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(XVKFC_JNI_INCLUDE_DIR AND XVKFC_JNI_MD_INCLUDE_DIR)
  set(XVKFC_JNI_FOUND TRUE)
  set(XVKFC_JNI_INCLUDE_DIRS ${XVKFC_JNI_INCLUDE_DIR} ${XVKFC_JNI_MD_INCLUDE_DIR})
else()
  set(XVKFC_JNI_FOUND FALSE)
  message(STATUS "No JDK found (jni.h): the Java binding is not built. "
                 "Install openjdk-17-jdk-headless (scripts/install-deps.sh).")
endif()
