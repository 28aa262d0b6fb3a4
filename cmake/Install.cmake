# Install rules and the CMake package, so that an application's build can say
#   find_package(xvkfcEngineTAVO CONFIG REQUIRED)
#   target_link_libraries(app PRIVATE xvkfc::xvkfcEngineTAVO)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(_targets xvkfcEngineTAVO xvkfc_closed_headers)
if(NOT ANDROID)
  list(APPEND _targets TAVO_FR TAVO_LD)
endif()
install(TARGETS ${_targets}
  EXPORT xvkfcEngineTAVOTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

foreach(dir interface numeric clustering planning)
  install(DIRECTORY ${dir}/ DESTINATION include/xvkfc/${dir}
          FILES_MATCHING PATTERN "*.h" PATTERN "detail" EXCLUDE)
endforeach()
install(FILES platform/export.h DESTINATION include/xvkfc/platform)
if(NOT ANDROID)
  install(DIRECTORY platform/tavo/ DESTINATION include/xvkfc/platform/tavo)
endif()

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
