#pragma once

#include <optional>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/learning/dependency_space.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/learning/selection_question.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// A path between two selections, and the baselines that these stand for.
struct SelectionPath {
  std::vector<BaselineHop> steps;
  VersionBaseline source;
  VersionBaseline target;
};

/// What a search between two selections comes to.
struct SelectionAnswer {
  bool isSettled = true;                             ///< otherwise the question is not for it
  std::optional<SelectionPath> path = std::nullopt;  ///< settled without one: there is none

  /// Where the question is not settled because ways are long: so many linked metamodels may be made
  /// in the time that learning would take at least. Otherwise 0.
  std::size_t variantsToTry = 0;
};

enum class SelectionPlanning {
  ShortWays,      ///< backward, as long as that is easy, and then by learning unless ways are long
  BackwardFirst,  ///< the same, however long they are
  ByLearning,     ///< at once
};

/// `VersionRepository::findPath` between two selections, without linking anything but what the path
/// holds. For questions only that dependencies settle (see `DependencySpace`), in which hops form
/// no cycles.
SelectionAnswer searchBetweenSelections(
    SelectionHost& host, const SelectionQuestion& question,
    SelectionPlanning planning = SelectionPlanning::BackwardFirst);

/// The direction of such a question.
struct SelectionDirection {
  bool isSettled = true;                              ///< otherwise dependencies do not tell it
  std::optional<Direction> direction = std::nullopt;  ///< settled without one: an end is missing
};

/// That between the first baselines that the selections stand for.
SelectionDirection directionBetweenSelections(SelectionHost& host,
                                              const SelectionQuestion& question);

}  // namespace tarn::evolution::pathfinder
