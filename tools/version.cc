#include "tools/version.h"

#include <cstring>

#include "interface/face_recognition.h"

namespace tool {

std::string versionText() {
  // The engine's text is a writable 1000-byte array: never read past it.
  const size_t length = strnlen(itf_FACE_SOLUTION_Version, sizeof itf_FACE_SOLUTION_Version);
  return std::string("xvkfc ") + XVKFC_VERSION + "\nlibxvkfcEngineTAVO " + XVKFC_VERSION + "\n" +
         std::string(itf_FACE_SOLUTION_Version, length);
}

}  // namespace tool
