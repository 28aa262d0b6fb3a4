#include "tools/formats/output_paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <set>

#include "tools/tool_error.h"

namespace tool {
namespace {

std::string folderOf(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

bool anyStandardOutput(const std::vector<std::string>& paths) {
  for (const std::string& path : paths)
    if (isStandardOutput(path)) return true;
  return false;
}

void refuseStandardOutput(const std::string& path, const std::string& option,
                          const std::string& reason) {
  if (isStandardOutput(path)) {
    throw UsageError(option + " -: " + reason + "; name a file");
  }
}

void checkOutputPaths(const std::vector<std::string>& paths,
                      const std::vector<std::string>& inputs) {
  std::set<std::string> seen;
  for (const std::string& path : paths) {
    if (path.empty()) continue;
    if (!seen.insert(path).second) {
      throw UsageError((isStandardOutput(path) ? std::string("standard output (-)") : path) +
                       ": named as two different outputs");
    }
    if (isStandardOutput(path)) continue;
    struct stat info;
    if (stat(path.c_str(), &info) == 0) {
      if (S_ISDIR(info.st_mode)) throw UsageError(path + ": is a folder, not a file to write");
      for (const std::string& input : inputs) {
        struct stat in;
        if (!input.empty() && stat(input.c_str(), &in) == 0 && in.st_dev == info.st_dev &&
            in.st_ino == info.st_ino) {
          throw UsageError(path + ": is the input " + input + "; writing it would destroy it");
        }
      }
    }
    const std::string folder = folderOf(path);
    if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
      throw ToolError(path + ": cannot write there: folder " + folder + " does not exist");
    }
    // The file is written under a temporary name in this folder and renamed.
    if (access(folder.c_str(), W_OK | X_OK) != 0) {
      throw ToolError(path + ": cannot write there: folder " + folder + " is not writable");
    }
  }
}

}  // namespace tool
