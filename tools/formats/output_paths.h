// Checking where a command will write before it does any work, so that a
// long run never ends in "cannot write" after some of its files exist.
#ifndef XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_
#define XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_

#include <string>
#include <vector>

namespace tool {

// "-" as an output path names standard output.
inline bool isStandardOutput(const std::string& path) { return path == "-"; }

// True when one of `paths` is standard output: the command then prints its
// summary on standard error, so that standard output holds only the file.
bool anyStandardOutput(const std::vector<std::string>& paths);

// Checks the paths of `paths` in order (empty ones are skipped): throws
// UsageError for a path that is a folder, that an earlier entry also names
// (standard output, "-", too: it can take one output), or that is the same
// file as one of `inputs` (by device and inode, so another name of the file
// is caught too), and ToolError for one whose folder does not exist or
// cannot be written to.
void checkOutputPaths(const std::vector<std::string>& paths,
                      const std::vector<std::string>& inputs = {});

// Throws UsageError "OPTION -: REASON; name a file" when `path` is "-", for
// the outputs that do not go to standard output.
void refuseStandardOutput(const std::string& path, const std::string& option,
                          const std::string& reason);

}  // namespace tool

#endif  // XVKFC_TOOLS_FORMATS_OUTPUT_PATHS_H_
