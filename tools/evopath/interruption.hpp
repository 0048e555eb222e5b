#pragma once

#include <stdexcept>
#include <string>

#include "signal_catcher.hpp"

namespace evopath {

/// Ctrl-C or another signal has ended a command in good order. The program ends by that signal, so
/// that who started it sees how it ended.
class Interrupted : public std::runtime_error {
 public:
  Interrupted(const std::string& text, int signal) : std::runtime_error(text), signal_(signal) {}

  int signal() const { return signal_; }

 private:
  int signal_;
};

/// Throws Interrupted if the last SignalCatcher has caught a signal.
inline void throwIfInterrupted(const std::string& text) {
  if (const int signal = SignalCatcher::caught()) throw Interrupted(text, signal);
}

}  // namespace evopath
