// The self-pipe trick: the handler may do little but write, and writes to a pipe, which a thread
// can wait for.

#include "signal_catcher.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace evopath {

namespace {

volatile std::sig_atomic_t caughtSignal = 0;
volatile std::sig_atomic_t pipeEnd = -1;

void writeByte(int descriptor) {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = ::write(descriptor, &byte, 1);
}

void noteSignal(int signal) {
  const int error = errno;
  if (caughtSignal == 0) caughtSignal = signal;
  writeByte(pipeEnd);
  errno = error;
}

void catchUnlessIgnored(int signal, struct sigaction& former) {
  sigaction(signal, nullptr, &former);
  if (former.sa_handler == SIG_IGN) return;  // as for what a shell runs in the background
  struct sigaction action {};
  action.sa_handler = noteSignal;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  sigaction(signal, &action, nullptr);
}

}  // namespace

SignalCatcher::SignalCatcher() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "no pipe for signals");
  }
  reading_ = ends[0];
  writing_ = ends[1];
  caughtSignal = 0;
  pipeEnd = writing_;
  catchUnlessIgnored(SIGINT, formerInterrupt_);
  catchUnlessIgnored(SIGTERM, formerTermination_);
}

SignalCatcher::~SignalCatcher() {
  sigaction(SIGINT, &formerInterrupt_, nullptr);
  sigaction(SIGTERM, &formerTermination_, nullptr);
  ::close(reading_);
  ::close(writing_);
}

int SignalCatcher::caught() {
  return caughtSignal;
}

bool SignalCatcher::wait(int milliseconds) const {
  pollfd waited{reading_, POLLIN, 0};
  if (::poll(&waited, 1, milliseconds) <= 0) return false;
  char bytes[16];
  return ::read(reading_, bytes, sizeof bytes) > 0;
}

void SignalCatcher::wake() const {
  writeByte(writing_);
}

}  // namespace evopath
