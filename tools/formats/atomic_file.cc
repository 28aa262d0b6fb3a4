#include "tools/formats/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

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
  // Opened without blocking: a plain open of a FIFO waits for a writer that
  // may never come, before any limit below could apply.
  const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) throw ToolError(path + ": cannot open (" + std::strerror(errno) + ")");
  const struct Closer {
    int fd;
    ~Closer() { close(fd); }
  } closer{fd};
  struct stat status;
  if (fstat(fd, &status) != 0) {
    throw ToolError(path + ": cannot read (" + std::strerror(errno) + ")");
  }
  const std::string tooLarge =
      path + ": larger than the " + std::to_string(maxBytes) + " bytes an input file may have";
  // A regular file says how large it is; a character device or a pipe may
  // never end (/dev/zero), so it is read only up to the limit. Anything else
  // (a directory, a block device) is not an input file.
  const bool pipe = S_ISFIFO(status.st_mode);
  if (S_ISREG(status.st_mode)) {
    if (static_cast<uint64_t>(status.st_size) > maxBytes) throw ToolError(tooLarge);
  } else if (!pipe && !S_ISCHR(status.st_mode)) {
    throw ToolError(path + ": not a regular file (" +
                    (S_ISDIR(status.st_mode) ? "a directory" : "a block device or socket") + ")");
  }
  std::string content;
  bool writerSeen = false;
  char chunk[1 << 16];
  for (;;) {
    const ssize_t got = read(fd, chunk, sizeof chunk);
    if (got > 0) {
      if (static_cast<size_t>(got) > maxBytes - content.size()) throw ToolError(tooLarge);
      content.append(chunk, static_cast<size_t>(got));
      writerSeen = true;
    } else if (got == 0) {
      break;
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      // A pipe whose writer has not written yet (another program's output
      // given as /dev/stdin), or a terminal: read it as any program does.
      writerSeen = true;
      if (fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) {
        throw ToolError(path + ": cannot read (" + std::strerror(errno) + ")");
      }
    } else if (errno != EINTR) {
      throw ToolError(path + ": cannot read (" + std::strerror(errno) + ")");
    }
  }
  // Without a writer, a FIFO opened without blocking reads as empty at once.
  if (pipe && !writerSeen) {
    throw ToolError(path + ": a FIFO or pipe that nothing is writing to");
  }
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
