#include "text_output.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace evopath {

namespace {

void writeAll(int descriptor, std::string_view text, const std::string& where) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) failToWrite(where, errno);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

/// The permissions that a file written anew gets: those of the one it replaces, or the usual ones.
mode_t permissionsOf(const std::string& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) == 0) return status.st_mode & 07777;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

/// Has Ctrl-C, SIGTERM and SIGHUP wait as long as it lives.
class InterruptDelay {
 public:
  InterruptDelay() {
    sigset_t interrupts;
    sigemptyset(&interrupts);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&interrupts, signal);
    ::pthread_sigmask(SIG_BLOCK, &interrupts, &former_);
  }
  InterruptDelay(const InterruptDelay&) = delete;
  InterruptDelay& operator=(const InterruptDelay&) = delete;
  ~InterruptDelay() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }

 private:
  sigset_t former_{};
};

/// A file beside the one to be written that is renamed to it when complete, or else removed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target)
      : target_(target), name_(target + ".XXXXXX"), descriptor_(::mkstemp(name_.data())) {
    if (descriptor_ < 0) failToWrite(target_, errno);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    ::close(descriptor_);
    if (!isDone_) ::unlink(name_.c_str());
  }

  void complete(const std::string& text) {
    writeAll(descriptor_, text, target_);
    if (::fchmod(descriptor_, permissionsOf(target_)) != 0 || ::fsync(descriptor_) != 0 ||
        ::rename(name_.c_str(), target_.c_str()) != 0) {
      failToWrite(target_, errno);
    }
    isDone_ = true;
  }

 private:
  const InterruptDelay delay_;  // would leave the file behind
  const std::string target_;
  std::string name_;
  const int descriptor_;
  bool isDone_ = false;
};

/// Whether the file is there and is neither a regular one nor a folder.
bool isDevice(const std::filesystem::path& file) {
  std::error_code unknown;
  return std::filesystem::exists(file, unknown) &&
         !std::filesystem::is_regular_file(file, unknown) &&
         !std::filesystem::is_directory(file, unknown);
}

void writeToDevice(const std::filesystem::path& file, const std::string& text) {
  std::FILE* device = std::fopen(file.c_str(), "w");
  if (device == nullptr) failToWrite(file.string(), errno);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closing(device, std::fclose);
  writeAll(::fileno(device), text, file.string());
}

}  // namespace

void writeToStandardOutput(const std::string& text) {
  std::cout.flush();
  writeAll(STDOUT_FILENO, text, "standard output");
}

void writeToDescriptor(int descriptor, const std::string& text, const std::string& where) {
  writeAll(descriptor, text, where);
}

void failToWrite(const std::string& where, int error) {
  throw std::runtime_error(where +
                           ": cannot be written: " + std::generic_category().message(error));
}

void writeToFile(const std::filesystem::path& file, const std::string& text) {
  if (isDevice(file)) {
    writeToDevice(file, text);
    return;
  }
  std::error_code unknown;
  const std::filesystem::path behindLinks = std::filesystem::weakly_canonical(file, unknown);
  TemporaryFile(unknown ? file.string() : behindLinks.string()).complete(text);
}

}  // namespace evopath
