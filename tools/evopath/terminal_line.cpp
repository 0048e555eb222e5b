#include "terminal_line.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>

namespace evopath {

TerminalLine::TerminalLine() : isOnTerminal_(::isatty(STDERR_FILENO) == 1) {}

TerminalLine::~TerminalLine() {
  if (isShown_) std::cerr << "\r\033[K" << std::flush;
}

std::size_t TerminalLine::width() {
  winsize size{};
  const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col - 1U : 79U;
}

void TerminalLine::show(const std::string& text) {
  if (!isOnTerminal_) return;
  isShown_ = true;
  std::cerr << "\r" << text.substr(0, width()) << "\033[K" << std::flush;
}

}  // namespace evopath
