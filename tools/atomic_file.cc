#include "tools/atomic_file.h"

#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "tools/tool_error.h"

namespace tool {

void writeFileAtomically(const std::string& path, const std::string& bytes) {
  // The process id keeps two programs writing the same output apart.
  const std::string temporary = path + ".tmp." + std::to_string(getpid());
  FILE* file = std::fopen(temporary.c_str(), "wb");
  if (file == nullptr) {
    throw ToolError(path + ": cannot write (" + std::strerror(errno) + ")");
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool closed = std::fclose(file) == 0;
  if (!written || !closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
    const std::string reason = std::strerror(errno);
    std::remove(temporary.c_str());
    throw ToolError(path + ": cannot write (" + reason + ")");
  }
}

std::string readWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ToolError(path + ": cannot open (" + std::strerror(errno) + ")");
  std::ostringstream content;
  content << in.rdbuf();
  if (in.bad()) throw ToolError(path + ": cannot read");
  return content.str();
}

bool hasSuffix(const std::string& path, const std::string& suffix) {
  if (path.size() < suffix.size()) return false;
  const size_t start = path.size() - suffix.size();
  for (size_t i = 0; i < suffix.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(path[start + i])) !=
        std::tolower(static_cast<unsigned char>(suffix[i]))) {
      return false;
    }
  }
  return true;
}

}  // namespace tool
