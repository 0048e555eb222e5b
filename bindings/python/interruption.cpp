#include "interruption.hpp"

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <thread>

namespace {

std::atomic<bool> isSignalled = false;
std::atomic<bool> isWatched = false;
struct sigaction former;  // while it is watched

void noteAndPassOn(int signal) {
  isSignalled = true;
  former.sa_handler(signal);
}

bool isPythonsMainThread() {
  namespace py = pybind11;
  const py::module_ threading = py::module_::import("threading");
  return threading.attr("current_thread")().is(threading.attr("main_thread")());
}

}  // namespace

struct InterruptWatch::Watching {
  explicit Watching(std::stop_source stop) {
    isSignalled = false;
    struct sigaction own = former;
    own.sa_handler = noteAndPassOn;
    sigaction(SIGINT, &own, nullptr);
    watcher = std::jthread([stop = std::move(stop)](const std::stop_token& ended) mutable {
      while (!ended.stop_requested() && !isSignalled) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      }
      if (isSignalled) stop.request_stop();
    });
  }
  Watching(const Watching&) = delete;
  Watching& operator=(const Watching&) = delete;

  ~Watching() {
    sigaction(SIGINT, &former, nullptr);
    isWatched = false;
  }

  std::jthread watcher;
};

InterruptWatch::InterruptWatch(std::stop_source stop) {
  if (!isPythonsMainThread() || isWatched.exchange(true)) return;
  sigaction(SIGINT, nullptr, &former);
  const bool isHandled = (former.sa_flags & SA_SIGINFO) == 0 && former.sa_handler != SIG_IGN &&
                         former.sa_handler != SIG_DFL;
  if (isHandled) {
    watching_ = std::make_unique<Watching>(std::move(stop));
  } else {
    isWatched = false;
  }
}

InterruptWatch::~InterruptWatch() = default;

bool InterruptWatch::isInterrupted() const {
  return watching_ != nullptr && isSignalled;
}
