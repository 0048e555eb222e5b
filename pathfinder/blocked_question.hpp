#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/search_limits.hpp"
#include "pathfinder/version_baseline.hpp"
#include "pathfinder/version_repository.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// A question between two selections that has no path, to be asked why, and how near one can get.
///
/// The answers are proven, and come of one search each that learns from what it refutes; asking
/// `VersionRepository::findPath` for parts of the question takes many more. What counts is what
/// metamodels depend on. Links that an application adds in `loadMetamodel` count in `findNearest`
/// alone, which passes over baselines that they forbid.
///
/// Keeps what it has learnt of the application, which must stay as it was. Refers to the
/// repository, which must outlive it. One thread at a time may use it. Whatever the application
/// throws reaches the caller, and leaves the question as it was.
class TARN_EVOLUTION_PATHFINDER_EXPORT BlockedQuestion {
 public:
  using Selection = std::unordered_map<std::u16string, VersionId>;

  /// Asks the application for every version that hops in `direction` lead to from the source. The
  /// target need not be consistent.
  ///
  /// Null for questions that it cannot answer, such as: the source is not consistent, leaves open
  /// which names it holds, or lacks a name of the target; the hops of a metamodel form a cycle; a
  /// metamodel depends on its own name, or twice on another; the application answers for one name
  /// with another. Always null in a build without the solver. Hops against `direction` are left out
  /// as in `VersionRepository::findPath`. Throws InvalidFamilyVersion for a selected version that
  /// the application does not know, and SearchStopped when a limit is reached.
  static std::unique_ptr<BlockedQuestion> pose(VersionRepository& repository, const Selection& from,
                                               const Selection& to,
                                               VersionRepository::Direction direction,
                                               const SearchLimits& limits = {});

  BlockedQuestion(const BlockedQuestion&) = delete;
  BlockedQuestion& operator=(const BlockedQuestion&) = delete;
  virtual ~BlockedQuestion();

  /// Whether all that versions within reach depend on is held by the source.
  virtual bool isClosed() const noexcept = 0;

  /// Metamodels that block one another: even if all others could have any version that the
  /// application knows, and another one at any time, no hops would bring these to the target. The
  /// source holds all of them.
  struct BlockingSet {
    std::vector<std::u16string> names;  ///< ascending

    /// Whether no smaller set does. Of several smallest sets, this is the first in the ascending
    /// order of names. False when a limit was reached before that was proven.
    bool isSmallest = true;

    /// Whether none of the names can be left out. False when a limit was reached before each was
    /// tried.
    bool isMinimal = true;

    /// Versions of these metamodels that cannot be held together, as many as it takes to prove that
    /// they block one another: without any one of these the proof would fail. Empty when a limit
    /// was reached.
    std::vector<std::map<std::u16string, VersionId>> exclusions = {};

    /// The limit that was reached; none when the search has ended.
    std::optional<SearchStopped::Reason> stopped = std::nullopt;
  };

  /// No value when there is a path. Unless the question is closed, also none when the metamodels
  /// that the source holds do not block one another. When a limit is reached, the best set that is
  /// known; throws SearchStopped when it is not known yet whether there is a path, and
  /// std::logic_error when the application answers for one name with another.
  virtual std::optional<BlockingSet> findBlockingSet(const SearchLimits& limits) = 0;

  /// What it costs to end with a version, by any measure; no value forbids it.
  using EndCost = std::function<std::optional<std::uint64_t>(const Metamodel& end)>;

  struct Nearest {
    std::vector<BaselineHop> path;  ///< empty: the source itself
    VersionBaseline baseline;
  };

  /// Of all baselines within reach the one with the lowest costs, summed up over all metamodels: by
  /// the first measure; of those, by the second, and so on; of those, one with a path of least
  /// weight. No value when all of them are forbidden. Throws SearchStopped when a limit is reached,
  /// and std::logic_error when the question is not closed or when the application has linked a
  /// version to what no dependency asks for.
  virtual std::optional<Nearest> findNearest(const std::vector<EndCost>& measures,
                                             const SearchLimits& limits) = 0;

  /// The versions that are certain before a path is planned: those that all baselines of the least
  /// costs share. Links that the application adds in `loadMetamodel` are not looked at. The rest as
  /// for `findNearest`.
  virtual std::optional<Selection> findNearestEnds(const std::vector<EndCost>& measures,
                                                   const SearchLimits& limits) = 0;

 protected:
  BlockedQuestion();
};

}  // namespace tarn::evolution::pathfinder
