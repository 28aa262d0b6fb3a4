// Writing output files so that nothing is ever half-written.
#ifndef XVKFC_TOOLS_FORMATS_ATOMIC_FILE_H_
#define XVKFC_TOOLS_FORMATS_ATOMIC_FILE_H_

#include <cstddef>
#include <string>

namespace tool {

// Writes `bytes` to a temporary file beside `path` and renames it to `path`,
// so that `path` either keeps its old content or holds all of `bytes`.
// When `path` exists and is not a regular file (/dev/null, a pipe) it is
// written directly instead, so the device or pipe stays what it is.
// "-" writes `bytes` to standard output.
// Throws ToolError (and removes the temporary file) when writing fails,
// including a full device (/dev/full).
void writeFileAtomically(const std::string& path, const std::string& bytes);

// The most any one input file may hold: 1 GiB, about 280,000 features, far
// more than a clustering run can compare pairwise.
inline constexpr size_t kMaxInputBytes = size_t{1} << 30;

// Reads a whole file of at most `maxBytes` bytes. Throws ToolError naming
// `path` when it cannot be read or is larger; a source that never ends
// (/dev/zero) is read only up to the limit. A FIFO or pipe is read when a
// program is writing to it and refused at once when none is (never waited
// for); a directory or block device is refused.
std::string readWholeFile(const std::string& path, size_t maxBytes = kMaxInputBytes);

// True when `path` ends with `suffix`, compared without regard to case.
bool hasSuffix(const std::string& path, const std::string& suffix);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_ATOMIC_FILE_H_
