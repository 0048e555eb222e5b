#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

namespace test {

/// The exit status of a shell command in a folder, and what it writes to standard output.
inline std::pair<int, std::string> runInFolder(const std::filesystem::path& folder,
                                               const std::string& command) {
  FILE* pipe = popen(("cd '" + folder.string() + "' && " + command).c_str(), "r");
  std::string output;
  for (int next = fgetc(pipe); next != EOF; next = fgetc(pipe)) output += static_cast<char>(next);
  const int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

/// The same for evopath.
inline std::pair<int, std::string> runEvopath(const std::filesystem::path& folder,
                                              const std::string& arguments) {
  return runInFolder(folder, "'" EVOPATH_PROGRAM "' " + arguments);
}

}  // namespace test
