#include "interruption.hpp"

#include <semaphore.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

namespace tarn::evolution::catalogue::python {

namespace py = pybind11;

namespace {

/// A thread that sleeps until the signal comes, and stops the search that runs then. There is one
/// for each process, for as long as that lasts: threads are not inherited.
class Watcher {
 public:
  Watcher() {
    if (sem_init(&noted_, 0, 0) != 0) {
      throw std::system_error(errno, std::generic_category(), "sem_init");
    }
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);  // signals are for the threads of Python
    try {
      std::thread([this] { watch(); }).detach();
    } catch (...) {
      pthread_sigmask(SIG_SETMASK, &former, nullptr);
      throw;
    }
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
  }

  void begin(std::stop_source stop) {
    const std::lock_guard lock(mutex_);
    isNoted_ = false;
    stop_ = std::move(stop);
  }

  void end() {
    const std::lock_guard lock(mutex_);
    stop_.reset();
  }

  /// What a handler may call.
  void note() {
    isNoted_ = true;
    sem_post(&noted_);
  }

  bool isNoted() const { return isNoted_; }

 private:
  [[noreturn]] void watch() {
    while (true) {
      while (sem_wait(&noted_) != 0) continue;
      const std::lock_guard lock(mutex_);
      if (isNoted_ && stop_) stop_->request_stop();  // not one that came before this search
    }
  }

  sem_t noted_;
  std::atomic<bool> isNoted_ = false;
  std::mutex mutex_;
  std::optional<std::stop_source> stop_;
};

std::atomic<Watcher*> watcher = nullptr;
std::atomic<bool> isWatched = false;
struct sigaction former;  // while it is watched

/// That of this process. None where no thread can be had.
Watcher* findWatcher() {
  static pid_t owner = 0;
  if (owner != getpid()) {
    try {
      watcher = new Watcher();  // which its thread uses until the process ends
      owner = getpid();
    } catch (const std::system_error&) {
      return nullptr;
    }
  }
  return watcher;
}

void noteAndPassOn(int signal) {
  const int error = errno;
  watcher.load()->note();
  errno = error;
  former.sa_handler(signal);
}

bool isPythonsMainThread() {
  const py::module_ threading = py::module_::import("threading");
  return threading.attr("current_thread")().is(threading.attr("main_thread")());
}

bool isHandledByPython(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler != SIG_IGN &&
         action.sa_handler != SIG_DFL;
}

}  // namespace

InterruptWatch::InterruptWatch(std::stop_source stop) {
  if (!isPythonsMainThread() || isWatched.exchange(true)) return;
  sigaction(SIGINT, nullptr, &former);
  Watcher* const found = isHandledByPython(former) ? findWatcher() : nullptr;
  if (found == nullptr) {
    isWatched = false;
    return;
  }
  isWatching_ = true;
  found->begin(std::move(stop));
  struct sigaction own = former;
  own.sa_handler = noteAndPassOn;
  sigaction(SIGINT, &own, nullptr);
  if (PyErr_CheckSignals() == 0) return;
  end();
  throw py::error_already_set();
}

InterruptWatch::~InterruptWatch() {
  if (isWatching_) end();
}

bool InterruptWatch::isInterrupted() const {
  return isWatching_ && watcher.load()->isNoted();
}

/// A handler that Python code has set meanwhile stays.
void InterruptWatch::end() {
  struct sigaction now;
  sigaction(SIGINT, nullptr, &now);
  if (now.sa_handler == noteAndPassOn) sigaction(SIGINT, &former, nullptr);
  watcher.load()->end();
  isWatched = false;
}

}  // namespace tarn::evolution::catalogue::python
