# Installs the build at BUILD_DIR to the fresh prefix PREFIX and compiles
# every installed header alone, as the only include of a file, with
# PREFIX/include as the only include folder (CXX is the compiler).
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
                RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cmake --install failed:\n${errors}")
endif()
file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include ${PREFIX}/include/*)
if(NOT headers)
  message(FATAL_ERROR "no header installed under ${PREFIX}/include")
endif()
set(failed "")
foreach(header ${headers})
  string(MAKE_C_IDENTIFIER ${header} name)
  set(source ${PREFIX}/check_${name}.cc)
  file(WRITE ${source} "#include <${header}>\n")
  execute_process(COMMAND ${CXX} -std=c++17 -fsyntax-only -Wall -Wextra -Werror
                          -I${PREFIX}/include ${source}
                  RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    string(APPEND failed "${header}:\n${errors}\n")
  endif()
endforeach()
list(LENGTH headers count)
if(failed)
  message(FATAL_ERROR "installed headers that do not compile alone:\n${failed}")
endif()
message(STATUS "${count} installed headers compile alone: ${headers}")
