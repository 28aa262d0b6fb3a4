// What `xvkfc --version` prints.
#ifndef XVKFC_TOOLS_VERSION_H_
#define XVKFC_TOOLS_VERSION_H_

#include <string>

namespace tool {

// Three lines: the program's version, the library's version (both the
// project version the build was made from) and the engine's own version
// text (itf_FACE_SOLUTION_Version), so that a bug report names all three.
std::string versionText();

}  // namespace tool

#endif  // XVKFC_TOOLS_VERSION_H_
