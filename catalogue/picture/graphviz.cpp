#include "catalogue/picture/graphviz.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to us

namespace tarn::evolution::catalogue {

namespace {

[[noreturn]] void fail(const std::string& what, int error) {
  throw std::runtime_error("Graphviz: " + what + ": " + std::generic_category().message(error));
}

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() { close(); }

  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  void close() {
    if (isOpen()) ::close(std::exchange(number_, -1));
  }

 private:
  int number_;
};

/// Two connected ends: ours, which does not block, and the program's.
std::pair<Descriptor, Descriptor> connect() {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) fail("no channel", errno);
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

bool isCompleteSvg(std::string_view text) {
  return text.substr(0, text.find_last_not_of('\n') + 1).ends_with("</svg>");
}

/// The program `dot` with channels to its input and from its output and errors.
class Dot {
 public:
  Dot() : Dot(connect(), connect()) {}
  Dot(const Dot&) = delete;
  Dot& operator=(const Dot&) = delete;
  ~Dot() {
    output_.close();
    errors_.close();
    if (isRunning_) waitForEnd();
  }

  /// Passes the input and gives the output.
  std::string run(std::string_view input) {
    std::string output;
    std::string errors;
    while (output_.isOpen() || errors_.isOpen()) {
      std::array<pollfd, 2> waited{
          pollfd{output_.number(), static_cast<short>(POLLIN | (isInputSent_ ? 0 : POLLOUT)), 0},
          pollfd{errors_.number(), POLLIN, 0}};
      if (::poll(waited.data(), waited.size(), -1) < 0 && errno != EINTR) fail("no answer", errno);
      if ((waited[0].revents & POLLOUT) != 0) send(input);
      if ((waited[0].revents & ~POLLOUT) != 0) receive(output_, output);
      if (waited[1].revents != 0) receive(errors_, errors);
    }
    const std::optional<int> status = waitForEnd();
    if (status ? *status != 0 : !isCompleteSvg(output)) {
      throw std::runtime_error("Graphviz: dot failed" + (errors.empty() ? "" : ": " + errors));
    }
    return output;
  }

 private:
  using Channel = std::pair<Descriptor, Descriptor>;

  Dot(Channel output, Channel errors)
      : output_(std::move(output.first)), errors_(std::move(errors.first)) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output.second.number(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.second.number(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors.second.number(), STDERR_FILENO);
    char program[] = "dot";
    char format[] = "-Tsvg";
    char* arguments[] = {program, format, nullptr};
    const int error = ::posix_spawnp(&process_, program, &actions, nullptr, arguments, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error == ENOENT) {
      throw std::runtime_error(
          "Graphviz is not installed: the program dot, which lays out the graph, was not found");
    }
    if (error != 0) fail("dot cannot be run", error);
    isRunning_ = true;
  }

  void send(std::string_view& input) {
    const ssize_t sent = ::send(output_.number(), input.data(), input.size(), MSG_NOSIGNAL);
    if (sent > 0) input.remove_prefix(static_cast<std::size_t>(sent));
    const bool isRefused = sent < 0 && errno != EAGAIN && errno != EINTR;
    if (!input.empty() && !isRefused) return;
    ::shutdown(output_.number(), SHUT_WR);
    isInputSent_ = true;
  }

  static void receive(Descriptor& channel, std::string& text) {
    std::array<char, 65536> buffer;
    const ssize_t length = ::read(channel.number(), buffer.data(), buffer.size());
    if (length > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(length));
    } else if (length == 0 || (errno != EAGAIN && errno != EINTR)) {
      channel.close();
    }
  }

  /// The status in which the program ended, 0 for success; none where the host keeps it from us: it
  /// ignores SIGCHLD, or waits for all children itself.
  std::optional<int> waitForEnd() {
    int status = 0;
    pid_t ended = -1;
    do {
      ended = ::waitpid(process_, &status, 0);
    } while (ended < 0 && errno == EINTR);
    isRunning_ = false;
    return ended == process_ ? std::optional(status) : std::nullopt;
  }

  Descriptor output_;
  Descriptor errors_;
  pid_t process_ = -1;
  bool isRunning_ = false;
  bool isInputSent_ = false;
};

}  // namespace

std::string drawWithGraphviz(const std::string& dot) {
  return Dot().run(dot);
}

}  // namespace tarn::evolution::catalogue
