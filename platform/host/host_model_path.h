// Shared by the host stand-ins of the closed libraries.
#ifndef XVKFC_PLATFORM_HOST_HOST_MODEL_PATH_H_
#define XVKFC_PLATFORM_HOST_HOST_MODEL_PATH_H_

#include <dirent.h>

namespace host {

// The stand-ins load no model files; they accept any folder that can be
// opened for reading, as the real libraries need one to read their models.
inline bool isReadableDirectory(const char* path) {
  if (path == nullptr) return false;
  DIR* dir = opendir(path);
  if (dir == nullptr) return false;
  closedir(dir);
  return true;
}

}  // namespace host

#endif  // XVKFC_PLATFORM_HOST_HOST_MODEL_PATH_H_
