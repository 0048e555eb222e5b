#pragma once

#include <string>

#include "catalogue/store/store_progress.hpp"
#include "signal_catcher.hpp"
#include "terminal_line.hpp"

namespace evopath {

/// Shows on standard error how far a long operation is, if that is a terminal; otherwise nothing.
/// Goes away with the object.
///
/// While it exists, Ctrl-C and SIGTERM end the operation in good order instead of the process at
/// once: the progress function then throws Interrupted. A second one ends the process.
class ProgressBar {
 public:
  /// `title` says what is going on.
  explicit ProgressBar(const std::string& title) : title_(title) {}

  /// To give to the operation, which the bar must outlive.
  tarn::evolution::catalogue::StoreProgress progress();

 private:
  void show(double share);

  const SignalCatcher signals_;
  std::string title_;
  TerminalLine line_;
  int percent_ = -1;
};

/// What the operation, which takes a progress function, returns; with a bar while it runs.
template <class Operation>
auto withProgressBar(const std::string& title, const Operation& operation) {
  ProgressBar bar(title);
  return operation(bar.progress());
}

}  // namespace evopath
