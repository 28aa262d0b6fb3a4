// Checking where a command will write before it does any work, so that a
// long run never ends in "cannot write" after some of its files exist.
#ifndef XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_
#define XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_

#include <string>
#include <vector>

namespace tool {

// Checks the paths of `paths` in order (empty ones and "-", standard
// output, are skipped): throws UsageError for a path that is a folder, that
// an earlier entry also names, or that is the same file as one of `inputs`
// (by device and inode, so another name of the file is caught too), and
// ToolError for one whose folder does not exist or cannot be written to.
void checkOutputPaths(const std::vector<std::string>& paths,
                      const std::vector<std::string>& inputs = {});

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_
