#pragma once

#include <string>

namespace evopath {

/// A line on standard error that is written over and over, if that is a terminal; otherwise
/// nothing. It never takes more than one line of the terminal, and goes away with the object.
class TerminalLine {
 public:
  TerminalLine();
  TerminalLine(const TerminalLine&) = delete;
  TerminalLine& operator=(const TerminalLine&) = delete;
  ~TerminalLine();

  bool isOnTerminal() const { return isOnTerminal_; }

  /// How many characters fit, the last column left free.
  static std::size_t width();

  /// Shows as much of the text, which is ASCII, as fits.
  void show(const std::string& text);

 private:
  const bool isOnTerminal_;
  bool isShown_ = false;
};

}  // namespace evopath
