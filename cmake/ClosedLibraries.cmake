# The two closed libraries: feature extractor/comparator (TAVO_FR) and
# landmark detector (TAVO_LD).
#
# xvkfc::closed_headers carries the include folder of their headers.
# On Android, TAVO_FR and TAVO_LD are the vendor's prebuilt libraries and the
# vendor's headers take the place of ours. Elsewhere the project builds its
# own host stand-ins from platform/host so that the whole pipeline runs on a
# workstation.
add_library(xvkfc_closed_headers INTERFACE)
add_library(xvkfc::closed_headers ALIAS xvkfc_closed_headers)

if(ANDROID)
  if(NOT XVKFC_VENDOR_INCLUDE_DIR OR NOT XVKFC_VENDOR_LIB_DIR)
    message(FATAL_ERROR
      "An Android build needs the vendor's closed libraries: set "
      "XVKFC_VENDOR_INCLUDE_DIR and XVKFC_VENDOR_LIB_DIR.")
  endif()
  target_include_directories(xvkfc_closed_headers INTERFACE ${XVKFC_VENDOR_INCLUDE_DIR})
  foreach(lib TAVO_FR TAVO_LD)
    add_library(${lib} SHARED IMPORTED)
    set_target_properties(${lib} PROPERTIES
      IMPORTED_LOCATION ${XVKFC_VENDOR_LIB_DIR}/lib${lib}.so)
  endforeach()
else()
  target_include_directories(xvkfc_closed_headers INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/tavo>
    $<INSTALL_INTERFACE:include/xvkfc/platform/tavo>)
  # The comparator's sums have an AVX2 rendering, chosen in platform/fast_paths.
  add_library(TAVO_FR SHARED platform/host/frecog_host.cc platform/fast_paths.cc)
  target_include_directories(TAVO_FR PRIVATE ${PROJECT_SOURCE_DIR})
  add_library(TAVO_LD SHARED platform/host/landmark_host.cc)
  # Built and installed as libxvkfc_standin_fr.so and libxvkfc_standin_ld.so,
  # so that a stand-in is never taken for (or installed over) the vendor's
  # library of the same name; ask for the vendor's names with
  # -DXVKFC_STANDINS_AS_VENDOR_NAMES=ON.
  option(XVKFC_STANDINS_AS_VENDOR_NAMES
         "Name the host stand-ins libTAVO_FR.so and libTAVO_LD.so, as the vendor does" OFF)
  if(NOT XVKFC_STANDINS_AS_VENDOR_NAMES)
    set_target_properties(TAVO_FR PROPERTIES OUTPUT_NAME xvkfc_standin_fr)
    set_target_properties(TAVO_LD PROPERTIES OUTPUT_NAME xvkfc_standin_ld)
  endif()
  foreach(lib TAVO_FR TAVO_LD)
    target_link_libraries(${lib} PRIVATE xvkfc_closed_headers)
    # The host stand-ins export their whole class, as the vendor's do.
    set_target_properties(${lib} PROPERTIES CXX_VISIBILITY_PRESET default
                                            VISIBILITY_INLINES_HIDDEN OFF)
  endforeach()
  # The extractor logs the one failure its null result cannot tell apart.
  target_link_libraries(TAVO_FR PRIVATE xvkfc::android_log)
  set_target_properties(TAVO_FR PROPERTIES INSTALL_RPATH_USE_LINK_PATH TRUE)
endif()
