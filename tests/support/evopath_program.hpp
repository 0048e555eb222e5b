#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "support/shell.hpp"

namespace test {

/// Runs evopath in a folder of its own.
class EvopathProgram {
 public:
  EvopathProgram() { std::filesystem::create_directories(folder_); }
  EvopathProgram(const EvopathProgram&) = delete;
  EvopathProgram& operator=(const EvopathProgram&) = delete;
  ~EvopathProgram() { std::filesystem::remove_all(folder_); }

  const std::filesystem::path& folder() const { return folder_; }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }

  std::string read(const std::string& name) const {
    std::ifstream in(folder_ / name);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  /// The exit status of a shell command in the folder, and what it writes to standard output.
  std::pair<int, std::string> runShell(const std::string& command) const {
    return runInFolder(folder_, command);
  }

  std::pair<int, std::string> run(const std::string& arguments) const {
    return runEvopath(folder_, arguments);
  }

 private:
  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("evopath-test-" + std::to_string(getpid()));
};

}  // namespace test
