#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "pathfinder/limits/application_failure.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::pathfinder {

/// Keeps an eye on the limits of the search that runs on this thread, and tells of its progress.
///
/// Whoever computes for long asks `checkpoint` on the way. The watch is the thread's rather than an
/// argument, because a search reaches linking through operations of the application. A search that
/// the application starts inside another one is bound by the limits of both.
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

  /// Whether a limit is reached, where searches inside this one have taken so many bytes. Asked
  /// often, it looks at the clock now and then.
  bool isOver(std::size_t inside = 0) noexcept;

  /// Throws SearchStopped if a limit is reached.
  void check() {
    if (isOver()) stop();
  }

  void enter(SearchProgress::Stage stage);

  /// That no path weighs less; or that a plan of that weight is known.
  void noteProven(std::uint64_t weight);
  void noteFound(std::uint64_t weight);

  /// Whether the host wants to be told of paths.
  bool wantsPaths() const { return limits_.betterPath && !isAside_; }

  /// Tells the host the path that `makePath` returns. False if it has none to return, which is so
  /// where the application fails on the way: a path over that is not known.
  template <class MakePath>
  bool tellPath(const MakePath& makePath) {
    std::optional<std::vector<BaselineHop>> path;
    if (failureOf([&] { path = makePath(); })) return false;
    if (path) limits_.betterPath(*path);
    return path.has_value();
  }

  /// While it lives, this thread searches for something else on the way, whose bounds and paths are
  /// none of the host's question.
  class Aside {
   public:
    Aside() : watch_(current()), wasAside_(watch_ != nullptr && watch_->isAside_) {
      if (watch_ != nullptr) watch_->isAside_ = true;
    }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;
    ~Aside() {
      if (watch_ != nullptr) watch_->isAside_ = wasAside_;
    }

   private:
    SearchWatch* const watch_;
    const bool wasAside_;
  };

  /// A search of this thread, as long as it lives: the host's or, if that one runs already and the
  /// application asks something on its own account, one aside.
  class Search {
   public:
    Search() : watch_(current()) {
      if (watch_ == nullptr) return;
      if (watch_->isSearching_) aside_.emplace();
      watch_->isSearching_ = true;
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search() {
      if (watch_ != nullptr && !aside_) watch_->isSearching_ = false;
    }

   private:
    SearchWatch* const watch_;
    std::optional<Aside> aside_;
  };

  /// How much memory the search has taken.
  void noteMemory(std::size_t bytes) noexcept { memory_ = bytes; }

 private:
  [[noreturn]] void stop() const;
  void tell();

  const SearchLimits& limits_;
  SearchWatch* const outer_;
  SearchProgress progress_;
  std::size_t memory_ = 0;
  bool isAside_ = false;
  bool isSearching_ = false;
  std::uint32_t untilNextLook_ = 0;
  std::optional<SearchStopped::Reason> reason_;
};

/// Throws SearchStopped if a limit of this thread's search is reached. Costs some nanoseconds.
inline void checkpoint() {
  if (SearchWatch* watch = SearchWatch::current()) watch->check();
}

}  // namespace tarn::evolution::pathfinder
