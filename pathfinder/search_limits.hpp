#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <vector>

#include "pathfinder/hop.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// How far a search has come.
struct SearchProgress {
  /// What is at work. When the work is too much for one search another goes on, even one that was
  /// at work before.
  enum class Stage : std::int32_t {
    Preparing = 0,     ///< selections are combined into baselines, and metamodels linked
    Exhaustive = 1,    ///< every combination of hops is tried
    GoalDirected = 2,  ///< plans are made backward from the targets
    Learning = 3,      ///< plans are made by learning from what was refuted
  };

  Stage stage = Stage::Preparing;

  /// No path weighs less than this: proven.
  std::uint64_t leastProven = 0;

  /// A plan of this weight is known. It is not proven that none weighs less, nor that linked
  /// metamodels allow it, where three or more of them disagree.
  std::optional<std::uint64_t> leastFound = std::nullopt;
};

/// What a search may take, and who is told how it goes.
///
/// Reaching a limit ends the search with `SearchStopped`. Limits are looked at wherever the library
/// itself computes, at least every 50 ms on a machine that is not overloaded; while the application
/// is called, nobody looks. They also bind what the application asks of a repository on the same
/// thread meanwhile.
struct SearchLimits {
  std::stop_token stop = {};
  std::optional<std::chrono::steady_clock::time_point> deadline = std::nullopt;

  /// For what the search keeps, in bytes: estimated, within a factor of two. Linked metamodels do
  /// not count, but for those of one version while they are made.
  std::size_t memory = std::numeric_limits<std::size_t>::max();

  /// Told when the stage or one of the bounds has changed, on the thread that searches. What it
  /// throws ends the search and reaches the caller.
  std::function<void(const SearchProgress&)> progress = {};

  /// Told each path that the search meets before it knows the answer and that weighs less than
  /// those told before; not proven least, let alone the first of its weight. A host that keeps the
  /// last one has a path to use if a limit is reached. Called like `progress`, but only by the
  /// search that learns for `findPath`. Making these paths takes time, and none are made if this is
  /// empty.
  std::function<void(const std::vector<BaselineHop>&)> betterPath = {};
};

/// A question has reached one of its limits; its answer is open. The repository is as it was, but
/// for what was linked completely.
class TARN_EVOLUTION_PATHFINDER_EXPORT SearchStopped : public std::runtime_error {
 public:
  enum class Reason : std::int32_t { StopRequested = 0, DeadlinePassed = 1, MemoryUsedUp = 2 };

  SearchStopped(Reason reason, const SearchProgress& progress);
  SearchStopped(const SearchStopped&) = default;
  SearchStopped& operator=(const SearchStopped&) = default;
  ~SearchStopped() override;

  Reason reason() const noexcept { return reason_; }

  /// How far it had come.
  const SearchProgress& progress() const noexcept { return progress_; }

 private:
  Reason reason_;
  SearchProgress progress_;
};

}  // namespace tarn::evolution::pathfinder
