#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <stop_token>
#include <thread>

#include "pathfinder/search_limits.hpp"
#include "signal_catcher.hpp"
#include "terminal_line.hpp"

namespace evopath {

/// Attends to a search as long as it lives: the first Ctrl-C or SIGTERM requests its stop, and if
/// standard error is a terminal, a line there shows how far it is, at most ten times a second. The
/// line goes away with the object.
class SearchMonitor {
 public:
  /// What the line speaks of.
  enum class Task { Search, Explanation, Comparison };

  /// Whether the line may be shown.
  enum class Line { OnTerminal, Never };

  SearchMonitor(const tarn::evolution::pathfinder::SearchLimits& limits, Task task, Line line);
  SearchMonitor(const SearchMonitor&) = delete;
  SearchMonitor& operator=(const SearchMonitor&) = delete;
  ~SearchMonitor();

  /// Those that were given, for a search that is attended to by this.
  tarn::evolution::pathfinder::SearchLimits limits();

  /// Has the line say how many of so many questions are done.
  void count(std::size_t done, std::size_t all);

 private:
  void attend();
  void draw();

  const tarn::evolution::pathfinder::SearchLimits limits_;
  const Task task_;
  TerminalLine terminal_;
  const bool isShown_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::stop_source stop_;
  std::mutex mutex_;
  tarn::evolution::pathfinder::SearchProgress progress_;  // guarded by the mutex, as are both below
  std::size_t done_ = 0;
  std::size_t all_ = 0;
  std::atomic<bool> isOver_ = false;
  SignalCatcher signals_;
  std::thread attendant_;  // last, for it uses all the others
};

/// What the search, which takes limits, returns; attended to while it runs.
template <class Search>
auto searchAttended(const tarn::evolution::pathfinder::SearchLimits& limits,
                    SearchMonitor::Task task, SearchMonitor::Line line, const Search& search) {
  SearchMonitor monitor(limits, task, line);
  return search(monitor.limits());
}

}  // namespace evopath
