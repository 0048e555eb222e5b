#include "search_monitor.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>
#include <string>

namespace evopath {

using tarn::evolution::pathfinder::SearchLimits;
using tarn::evolution::pathfinder::SearchProgress;

namespace {

constexpr int millisecondsBetweenLines = 100;

/// How many characters fit into a line of the terminal, its last column left free.
std::size_t terminalWidth() {
  winsize size{};
  const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col - 1U : 79U;
}

std::string describeBounds(const SearchProgress& progress) {
  std::string text;
  if (progress.leastProven > 0) text += ", weight at least " + std::to_string(progress.leastProven);
  if (!progress.leastFound) return text;
  return text + (text.empty() ? ", weight" : ",") + " at most " +
         std::to_string(*progress.leastFound);
}

}  // namespace

SearchMonitor::SearchMonitor(const SearchLimits& limits, Task task, Line line)
    : limits_(limits),
      task_(task),
      isShown_(line == Line::OnTerminal && ::isatty(STDERR_FILENO) == 1),
      attendant_([this] { attend(); }) {}

SearchMonitor::~SearchMonitor() {
  isOver_ = true;
  signals_.wake();
  attendant_.join();
}

SearchLimits SearchMonitor::limits() {
  SearchLimits result = limits_;
  result.stop = stop_.get_token();
  result.progress = [this](const SearchProgress& progress) {
    const std::lock_guard lock(mutex_);
    progress_ = progress;
  };
  return result;
}

void SearchMonitor::attend() {
  bool isDrawn = false;
  while (!isOver_) {
    if (signals_.wait(isShown_ ? millisecondsBetweenLines : -1)) {
      if (SignalCatcher::caught() != 0) stop_.request_stop();
    } else if (isShown_) {
      draw();
      isDrawn = true;
    }
  }
  if (isDrawn) std::cerr << "\r\033[K" << std::flush;
}

void SearchMonitor::draw() {
  using namespace std::chrono;
  const auto elapsed = duration_cast<seconds>(steady_clock::now() - start_).count();
  std::string text = task_ == Task::Search ? "Searching" : "Explaining";
  text += ", " + std::to_string(elapsed) + " s";
  if (task_ == Task::Search) {
    const std::lock_guard lock(mutex_);
    text += describeBounds(progress_);
  }
  std::cerr << "\r" << text.substr(0, terminalWidth()) << "\033[K" << std::flush;
}

}  // namespace evopath
