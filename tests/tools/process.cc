#include "process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tool_test {
namespace {

std::string readBackAndClose(FILE* file) {
  std::string text;
  std::rewind(file);
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;) text.append(buffer, n);
  std::fclose(file);
  return text;
}

}  // namespace

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
  std::vector<std::string> command;
  std::istringstream emulator(XVKFC_EMULATOR);
  for (std::string word; emulator >> word;) command.push_back(word);
  command.push_back(XVKFC_PROGRAM);
  command.insert(command.end(), args.begin(), args.end());

  FILE* out = std::tmpfile();
  FILE* err = std::tmpfile();
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(fileno(out), STDOUT_FILENO);
    dup2(fileno(err), STDERR_FILENO);
    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  ProcessResult result;
  int status = 0;
  if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status)) {
    result.exitCode = WEXITSTATUS(status);
  }
  result.out = readBackAndClose(out);
  result.err = readBackAndClose(err);
  return result;
}

}  // namespace tool_test
