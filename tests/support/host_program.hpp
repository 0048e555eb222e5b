#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

namespace test {

/// Another process that uses stores as it is told; store_host.cpp says how.
class HostProgram {
 public:
  HostProgram() {
    int toHost[2];
    int fromHost[2];
    if (pipe2(toHost, O_CLOEXEC) != 0 || pipe2(fromHost, O_CLOEXEC) != 0) std::abort();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toHost[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromHost[1], STDOUT_FILENO);
    std::string program = STORE_HOST_PROGRAM;
    char* arguments[] = {program.data(), nullptr};
    if (posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ) != 0) {
      std::abort();
    }
    posix_spawn_file_actions_destroy(&actions);
    close(toHost[0]);
    close(fromHost[1]);
    to_ = fdopen(toHost[1], "w");
    from_ = fdopen(fromHost[0], "r");
  }
  HostProgram(const HostProgram&) = delete;
  HostProgram& operator=(const HostProgram&) = delete;

  /// Lets it come to its end.
  ~HostProgram() {
    static_cast<void>(std::fclose(to_));
    waitpid(process_, nullptr, 0);
    static_cast<void>(std::fclose(from_));
  }

  /// Tells it a line, and does not wait.
  void begin(const std::string& line) {
    static_cast<void>(std::fputs((line + "\n").c_str(), to_));
    static_cast<void>(std::fflush(to_));
  }

  std::string answer() {
    std::string line;
    for (int next = std::fgetc(from_); next != '\n' && next != EOF; next = std::fgetc(from_)) {
      line += static_cast<char>(next);
    }
    return line;
  }

  std::string tell(const std::string& line) {
    begin(line);
    return answer();
  }

  /// Ends it in the middle of what it does.
  void kill() { ::kill(process_, SIGKILL); }

 private:
  pid_t process_ = 0;
  std::FILE* to_ = nullptr;
  std::FILE* from_ = nullptr;
};

}  // namespace test
