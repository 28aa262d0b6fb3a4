// Checking where a command will write before it does any work, so that a
// long run never ends in "cannot write" after some of its files exist.
#ifndef XVKFC_TOOLS_OUTPUT_PATHS_H_
#define XVKFC_TOOLS_OUTPUT_PATHS_H_

#include <string>
#include <vector>

namespace tool {

// Throws ToolError for the first path of `paths` (empty ones are skipped)
// whose folder does not exist or cannot be written to, that is itself a
// folder, or that another entry of `paths` also names.
void checkOutputPaths(const std::vector<std::string>& paths);

}  // namespace tool

#endif  // XVKFC_TOOLS_OUTPUT_PATHS_H_
