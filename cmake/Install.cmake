# Install rules and the CMake package, so that an application's build can say
#   find_package(xvkfcEngineTAVO CONFIG REQUIRED)
#   target_link_libraries(app PRIVATE xvkfc::xvkfcEngineTAVO)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(_targets xvkfcEngineTAVO)
if(NOT ANDROID)
  list(APPEND _targets TAVO_FR TAVO_LD)
endif()
install(TARGETS ${_targets}
  EXPORT xvkfcEngineTAVOTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Only the public headers are installed: the facade and the records it
# exchanges, the helpers the library exports beside it, the planning
# operations, and the export macro they use. Each includes only others of
# this list (the ctest InstalledHeadersCompileAlone compiles each alone);
# none needs the closed libraries' headers, which stay off an application's
# include path. Installed headers sit under include/xvkfc and name each
# other from there, so that an application needs one include root,
# include/, and writes #include <xvkfc/interface/face_recognition.h>. The
# copies are rewritten here from the sources, which name each other from
# the source root.
set(_public_headers
  interface/face_recognition.h
  interface/exchange_records.h
  interface/handle_support.h
  interface/yuv_convert.h
  planning/run_plan.h
  planning/planned_clustering.h
  platform/export.h)
foreach(header ${_public_headers})
  file(READ ${PROJECT_SOURCE_DIR}/${header} _text)
  string(REGEX REPLACE "#include \"(interface|numeric|clustering|planning|platform)/"
                       "#include \"xvkfc/\\1/" _text "${_text}")
  file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/public_include/xvkfc/${header}
                CONTENT "${_text}")
  get_filename_component(_folder ${header} DIRECTORY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/public_include/xvkfc/${header}
          DESTINATION include/xvkfc/${_folder})
endforeach()

install(EXPORT xvkfcEngineTAVOTargets
  NAMESPACE xvkfc::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xvkfcEngineTAVO)
configure_package_config_file(
  cmake/xvkfcEngineTAVOConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/xvkfcEngineTAVOConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xvkfcEngineTAVO)
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/xvkfcEngineTAVOConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/xvkfcEngineTAVOConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/xvkfcEngineTAVOConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xvkfcEngineTAVO)

# The command-line program, beside the library it runs on.
if(TARGET xvkfc)
  install(TARGETS xvkfc RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
