// Running the built xvkfc program as a separate process, and the folders
// the tests write its files to.
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

// A fresh empty folder under the test temporary folder, removed with all it
// holds when the object goes.
struct TempFolder {
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;

  std::string path(const std::string& name) const { return path_ + "/" + name; }
  // Writes `bytes` to the file `name` and returns its path.
  std::string write(const std::string& name, const std::string& bytes) const;
  // The number of entries in the folder.
  int entries() const;

  std::string path_;
};

}  // namespace tool_test

#endif  // XVKFC_TESTS_TOOLS_PROCESS_H_
