# The program's input and output file formats (features, face ids and
# labels, clusters, images) as a library of their own: the program links it,
# and the fuzz build, which builds no program, compiles the same readers for
# its fuzz targets. Included from tools/ and tests/fuzz/.
if(TARGET xvkfc_file_formats)
  return()
endif()
find_package(nlohmann_json 3 REQUIRED)
find_path(XVKFC_STB_INCLUDE_DIR stb_image.h PATH_SUFFIXES stb)
if(NOT XVKFC_STB_INCLUDE_DIR)
  message(FATAL_ERROR "stb_image.h not found: install libstb-dev (scripts/install-deps.sh)")
endif()
add_library(xvkfc_file_formats STATIC
  ${CMAKE_CURRENT_LIST_DIR}/formats/atomic_file.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/cluster_json.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/feature_file.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/file_kind.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/id_list.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/image_file.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/labels.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/npy.cc
  ${CMAKE_CURRENT_LIST_DIR}/formats/stb_image_decoder.cc
  ${CMAKE_CURRENT_LIST_DIR}/printable_text.cc
)
target_include_directories(xvkfc_file_formats PUBLIC ${PROJECT_SOURCE_DIR})
target_include_directories(xvkfc_file_formats SYSTEM PUBLIC ${XVKFC_STB_INCLUDE_DIR})
# The cluster record names the library's exchange records (headers only).
target_link_libraries(xvkfc_file_formats PUBLIC nlohmann_json::nlohmann_json xvkfc::closed_headers)
# The one undefined-behaviour check the image decoder fails on corrupt data
# (see stb_image_decoder.cc), left out for that file only.
if(XVKFC_SANITIZE OR CMAKE_CXX_FLAGS MATCHES "-fsanitize=[^ ]*undefined")
  set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/formats/stb_image_decoder.cc
                              PROPERTIES COMPILE_OPTIONS -fno-sanitize=shift-exponent)
endif()
