#include "search_monitor.hpp"

#include <cstddef>
#include <string>

namespace evopath {

using tarn::evolution::pathfinder::SearchLimits;
using tarn::evolution::pathfinder::SearchProgress;

namespace {

constexpr int millisecondsBetweenLines = 100;

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
      isShown_(line == Line::OnTerminal && terminal_.isOnTerminal()),
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

void SearchMonitor::count(std::size_t done, std::size_t all) {
  const std::lock_guard lock(mutex_);
  done_ = done;
  all_ = all;
}

void SearchMonitor::attend() {
  while (!isOver_) {
    if (signals_.wait(isShown_ ? millisecondsBetweenLines : -1)) {
      if (SignalCatcher::caught() != 0) stop_.request_stop();
    } else if (isShown_) {
      draw();
    }
  }
}

void SearchMonitor::draw() {
  using namespace std::chrono;
  const auto elapsed = duration_cast<seconds>(steady_clock::now() - start_).count();
  constexpr const char* tasks[] = {"Searching", "Explaining", "Comparing"};
  std::string text = tasks[static_cast<std::size_t>(task_)];
  text += ", " + std::to_string(elapsed) + " s";
  const std::lock_guard lock(mutex_);
  if (task_ == Task::Search) text += describeBounds(progress_);
  if (task_ == Task::Comparison) {
    text += ", " + std::to_string(done_) + " of " + std::to_string(all_) + " questions";
  }
  terminal_.show(text);
}

}  // namespace evopath
