#include "process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/formats/atomic_file.h"

namespace tool_test {

TempFolder::TempFolder() : path_(testing::TempDir() + "xvkfc_tool_XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
}

TempFolder::~TempFolder() { std::filesystem::remove_all(path_); }

std::string TempFolder::write(const std::string& name, const std::string& bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
  return path(name);
}

int TempFolder::entries() const {
  using std::filesystem::directory_iterator;
  return static_cast<int>(std::distance(directory_iterator(path_), directory_iterator()));
}

ProcessResult runProgram(const std::vector<std::string>& args) {
  std::string command = XVKFC_EMULATOR " '" XVKFC_PROGRAM "'";
  for (const std::string& arg : args) {  // each word in single quotes, a quote as '\''
    command += " '";
    for (char c : arg) command += c == '\'' ? std::string("'\\''") : std::string(1, c);
    command += "'";
  }
  const TempFolder streams;
  const int status =
      std::system((command + " >" + streams.path("out") + " 2>" + streams.path("err")).c_str());
  // The shell reports a signal as 128 and more.
  const bool exited = WIFEXITED(status) && WEXITSTATUS(status) < 128;
  return {exited ? WEXITSTATUS(status) : -1, tool::readWholeFile(streams.path("out")),
          tool::readWholeFile(streams.path("err"))};
}

}  // namespace tool_test
