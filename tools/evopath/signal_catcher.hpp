#pragma once

#include <csignal>

namespace evopath {

/// While it exists, the first Ctrl-C (SIGINT) or SIGTERM does not end the process, but can be
/// waited for. A second one of the same kind ends the process. Signals that were ignored stay so.
///
/// There is one at a time.
class SignalCatcher {
 public:
  /// Throws std::system_error when the system has no pipe to give.
  SignalCatcher();
  SignalCatcher(const SignalCatcher&) = delete;
  SignalCatcher& operator=(const SignalCatcher&) = delete;
  ~SignalCatcher();

  /// The first signal caught; 0 for none.
  static int caught();

  /// Waits for a signal, `wake` or so many milliseconds, negative for ever. Whether it was one of
  /// the first two.
  bool wait(int milliseconds) const;

  /// Ends `wait` on another thread.
  void wake() const;

 private:
  int reading_ = -1;
  int writing_ = -1;
  struct sigaction formerInterrupt_ {};
  struct sigaction formerTermination_ {};
};

}  // namespace evopath
