#pragma once

#include <pybind11/pybind11.h>

#include <stop_token>

#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue::python {

/// Ctrl-C while the library searches. Python's own handler of SIGINT only notes it, until Python
/// code runs again; a search runs none. So while one runs on the main thread, the handler wakes
/// another thread, which has the search stop: what that takes is nothing for a handler to do.
class InterruptWatch {
 public:
  /// Requires the global lock. Watches nothing on other threads than Python's main one, nor within
  /// another watch, nor where Python does not handle SIGINT. Throws what a handler raises for a
  /// signal that has come before.
  explicit InterruptWatch(std::stop_source stop);
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;
  ~InterruptWatch();

  /// Whether the signal has come meanwhile.
  bool isInterrupted() const;

 private:
  void end();

  bool isWatching_ = false;
};

/// What `ask` returns, which is called with the limits and without the global lock. Whatever a
/// Python handler of SIGINT raises ends it; where it raises nothing, the question is asked again.
template <class Ask>
auto interruptible(pathfinder::SearchLimits limits, const Ask& ask) {
  while (true) {
    std::stop_source stop;
    limits.stop = stop.get_token();
    const InterruptWatch watch(stop);
    try {
      const pybind11::gil_scoped_release released;
      return ask(limits);
    } catch (const pathfinder::SearchStopped& stopped) {
      using Reason = pathfinder::SearchStopped::Reason;
      if (stopped.reason() != Reason::StopRequested || !watch.isInterrupted()) throw;
      if (PyErr_CheckSignals() != 0) throw pybind11::error_already_set();
    }
  }
}

}  // namespace tarn::evolution::catalogue::python
