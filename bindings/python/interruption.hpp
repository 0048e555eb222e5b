#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <stop_token>

#include "pathfinder/search_limits.hpp"

/// Ctrl-C while the library searches. Python's own handler of SIGINT only notes it, until Python
/// code runs again; a search runs none. So while one runs on the main thread, another thread looks
/// for the signal and has the search stop.
class InterruptWatch {
 public:
  /// Requires the global lock. Does nothing on other threads than Python's main one, nor within
  /// another watch, nor where Python does not handle SIGINT.
  explicit InterruptWatch(std::stop_source stop);
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;
  ~InterruptWatch();

  /// Whether the signal has come meanwhile.
  bool isInterrupted() const;

 private:
  struct Watching;

  std::unique_ptr<Watching> watching_;
};

/// What `ask` returns, which is called with the limits and without the global lock. Whatever a
/// Python handler of SIGINT raises ends it; where it raises nothing, the question is asked again.
template <class Ask>
auto interruptible(tarn::evolution::pathfinder::SearchLimits limits, const Ask& ask) {
  while (true) {
    std::stop_source stop;
    limits.stop = stop.get_token();
    const InterruptWatch watch(stop);
    try {
      const pybind11::gil_scoped_release released;
      return ask(limits);
    } catch (const tarn::evolution::pathfinder::SearchStopped& stopped) {
      using Reason = tarn::evolution::pathfinder::SearchStopped::Reason;
      if (stopped.reason() != Reason::StopRequested || !watch.isInterrupted()) throw;
      if (PyErr_CheckSignals() != 0) throw pybind11::error_already_set();
    }
  }
}
