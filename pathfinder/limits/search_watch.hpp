#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::pathfinder {

/// Keeps an eye on the limits of the search that runs on this thread, and tells of its progress.
///
/// Whoever computes for long asks `checkpoint` on the way. The watch is the thread's rather than an
/// argument, because a search reaches linking through operations of the application; a search that
/// the application starts inside another one, without limits of its own, is bound by those of the
/// outer one.
class SearchWatch {
 public:
  /// Watches until it is destroyed. Limits must outlive it.
  explicit SearchWatch(const SearchLimits& limits) : limits_(limits), outer_(current()) {
    current() = this;
  }
  SearchWatch(const SearchWatch&) = delete;
  SearchWatch& operator=(const SearchWatch&) = delete;
  ~SearchWatch() { current() = outer_; }

  /// This thread's; null when no search with limits runs.
  static SearchWatch*& current();

  /// Whether a limit is reached. Asked often, it looks at the clock now and then.
  bool isOver() noexcept;

  /// Throws SearchStopped if a limit is reached.
  void check() {
    if (isOver()) stop();
  }

  void enter(SearchProgress::Stage stage);

  /// That no path weighs less; or that a plan of that weight is known.
  void noteProven(std::uint64_t weight);
  void noteFound(std::uint64_t weight);

  /// How much memory the search has taken.
  void noteMemory(std::size_t bytes) noexcept { memory_ = bytes; }

 private:
  [[noreturn]] void stop() const;
  void tell();

  const SearchLimits& limits_;
  SearchWatch* const outer_;
  SearchProgress progress_;
  std::size_t memory_ = 0;
  std::uint32_t untilNextLook_ = 0;
  std::optional<SearchStopped::Reason> reason_;
};

/// Throws SearchStopped if a limit of this thread's search is reached. Costs some nanoseconds.
inline void checkpoint() {
  if (SearchWatch* watch = SearchWatch::current()) watch->check();
}

}  // namespace tarn::evolution::pathfinder
