#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>

namespace test {

/// The bytes of a file, none of one that is not there.
inline std::string readFile(const std::filesystem::path& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

/// A folder of its own, for one object at a time in a process.
class TestFolder {
 public:
  TestFolder() { std::filesystem::create_directories(folder_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  ~TestFolder() { std::filesystem::remove_all(folder_); }

  std::filesystem::path path(const std::string& name) const { return folder_ / name; }
  std::string read(const std::string& name) const { return readFile(path(name)); }
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }

  /// The names of all files.
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  /// The exit status of a shell command in the folder, and what it writes to standard output.
  std::pair<int, std::string> runShell(const std::string& command) const {
    FILE* pipe = popen(("cd '" + folder_.string() + "' && " + command).c_str(), "r");
    std::string output;
    for (int next = fgetc(pipe); next != EOF; next = fgetc(pipe)) output += static_cast<char>(next);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
  }

 protected:
  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("tarn-test-" + std::to_string(getpid()));
};

}  // namespace test
