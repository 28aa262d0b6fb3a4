// Writing output files so that nothing is ever half-written.
#ifndef XVKFC_TOOLS_ATOMIC_FILE_H_
#define XVKFC_TOOLS_ATOMIC_FILE_H_

#include <string>

namespace tool {

// Writes `bytes` to a temporary file beside `path` and renames it to `path`,
// so that `path` either keeps its old content or holds all of `bytes`.
// Throws ToolError (and removes the temporary file) when writing fails.
void writeFileAtomically(const std::string& path, const std::string& bytes);

// Reads a whole file. Throws ToolError naming `path` when it cannot be read.
std::string readWholeFile(const std::string& path);

// True when `path` ends with `suffix`, compared without regard to case.
bool hasSuffix(const std::string& path, const std::string& suffix);

}  // namespace tool

#endif  // XVKFC_TOOLS_ATOMIC_FILE_H_
