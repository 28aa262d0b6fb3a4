#include "process.h"

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace tool_test {
namespace {

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

}  // namespace

std::string makeTempFolder() {
  std::string pattern = testing::TempDir() + "xvkfc_tool_XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
  return pattern;
}

void removeFolder(const std::string& folder) {
  nftw(
      folder.c_str(),
      [](const char* path, const struct stat*, int, struct FTW*) { return remove(path); }, 16,
      FTW_DEPTH | FTW_PHYS);
}

bool fileExists(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0;
}

std::vector<std::string> listFolder(const std::string& folder) {
  std::vector<std::string> names;
  if (DIR* dir = opendir(folder.c_str())) {
    while (dirent* entry = readdir(dir)) {
      const std::string name = entry->d_name;
      if (name != "." && name != "..") names.push_back(name);
    }
    closedir(dir);
  }
  return names;
}

ProcessResult runProgram(const std::vector<std::string>& args) {
  std::vector<std::string> command;
  std::istringstream emulator(XVKFC_EMULATOR);
  for (std::string word; emulator >> word;) command.push_back(word);
  command.push_back(XVKFC_PROGRAM);
  command.insert(command.end(), args.begin(), args.end());

  const std::string folder = makeTempFolder();
  const std::string outPath = folder + "/stdout", errPath = folder + "/stderr";
  const pid_t pid = fork();
  if (pid == 0) {
    const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
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
  result.out = slurp(outPath);
  result.err = slurp(errPath);
  unlink(outPath.c_str());
  unlink(errPath.c_str());
  rmdir(folder.c_str());
  return result;
}

}  // namespace tool_test
