// Running the built xvkfc program as a separate process.
#ifndef XVKFC_TESTS_TOOLS_PROCESS_H_
#define XVKFC_TESTS_TOOLS_PROCESS_H_

#include <string>
#include <vector>

namespace tool_test {

struct ProcessResult {
  int exitCode = -1;  // -1 when the process did not exit normally
  std::string out;    // standard output
  std::string err;    // standard error
};

// Runs xvkfc with `args` (through the cross emulator when there is one) in
// the current folder and waits for it.
ProcessResult runProgram(const std::vector<std::string>& args);

// A fresh empty folder under the test temporary folder.
std::string makeTempFolder();

// Removes `folder` and everything in it.
void removeFolder(const std::string& folder);

// True when `path` exists.
bool fileExists(const std::string& path);

// Names in `folder`, "." and ".." excluded.
std::vector<std::string> listFolder(const std::string& folder);

}  // namespace tool_test

#endif  // XVKFC_TESTS_TOOLS_PROCESS_H_
