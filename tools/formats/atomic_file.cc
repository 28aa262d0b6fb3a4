#include "tools/formats/atomic_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/tool_error.h"

namespace tool {

namespace {

// Writes straight into `path`, which exists and is not a regular file (a
// device such as /dev/null, a pipe): renaming a temporary file over it would
// replace the device node with a regular file.
void writeDirectly(const std::string& path, const std::string& bytes) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) {
    throw ToolError(path + ": cannot write (" + std::strerror(errno) + ")");
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const int writeError = errno;
  // fclose flushes what fwrite buffered: /dev/full fails only here.
  const bool closed = std::fclose(file) == 0;
  if (!written || !closed) {
    throw ToolError(path + ": cannot write (" + std::strerror(written ? errno : writeError) + ")");
  }
}

}  // namespace

void writeFileAtomically(const std::string& path, const std::string& bytes) {
  if (path == "-") {
    // Flushed here, so that a closed pipe or a full device is this error.
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() ||
        std::fflush(stdout) != 0) {
      throw ToolError(std::string("standard output: cannot write (") + std::strerror(errno) + ")");
    }
    return;
  }
  struct stat status;
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    writeDirectly(path, bytes);
    return;
  }
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

std::string readWholeFile(const std::string& path, size_t maxBytes) {
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw ToolError(path + ": cannot open (" + std::strerror(errno) + ")");
  const std::unique_ptr<FILE, int (*)(FILE*)> closer(file, std::fclose);
  const std::string tooLarge =
      path + ": larger than the " + std::to_string(maxBytes) + " bytes an input file may have";
  // A regular file says how large it is; a device or a pipe may never end
  // (/dev/zero), so it is read only up to the limit.
  struct stat status;
  if (fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) &&
      static_cast<uint64_t>(status.st_size) > maxBytes) {
    throw ToolError(tooLarge);
  }
  std::string content;
  char chunk[1 << 16];
  size_t got;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
    if (got > maxBytes - content.size()) throw ToolError(tooLarge);
    content.append(chunk, got);
  }
  if (std::ferror(file)) throw ToolError(path + ": cannot read (" + std::strerror(errno) + ")");
  return content;
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
