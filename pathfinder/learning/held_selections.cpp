#include "pathfinder/learning/held_selections.hpp"

#include <array>

namespace tarn::evolution::pathfinder {

HeldSelections::HeldSelections(const DependencySpace& dependencies) : space_(*dependencies.space) {
  for (const SearchSpace::Name& name : space_.names) {
    for (VersionIndex i = name.first; i < name.end; ++i) isHeld_.push_back(solver_.newVariable());
    solver_.addAtMostOne({isHeld_.begin() + name.first, isHeld_.begin() + name.end});
  }
  for (const Compatibility::Requirement& requirement : dependencies.requirements) {
    std::vector<Literal> clause{-isHeld_[requirement.version]};
    for (const VersionIndex version : requirement.admitted) clause.push_back(isHeld_[version]);
    solver_.addClause(clause);
  }
}

bool HeldSelections::canHold(VersionIndex version) {
  return solver_.solve(std::array{isHeld_[version]});
}

/// Most need not be asked about: whatever one selection holds can be held, and each is asked for
/// that holds what none did so far.
std::vector<bool> HeldSelections::versionsThatCanBeHeld() {
  std::vector<bool> result(isHeld_.size());
  for (VersionIndex version = 0; version < result.size(); ++version) {
    if (result[version] || !canHold(version)) continue;
    for (VersionIndex other = version; other < result.size(); ++other) {
      if (solver_.isTrue(isHeld_[other])) result[other] = true;
    }
    for (VersionIndex other = version; other < result.size(); ++other) {
      solver_.prefer(result[other] ? -isHeld_[other] : isHeld_[other]);
    }
  }
  return result;
}

VersionSelection HeldSelections::selection() const {
  VersionSelection selection;
  for (const SearchSpace::Name& name : space_.names) {
    VersionIndex held = name.first;
    while (held < name.end && !solver_.isTrue(isHeld_[held])) ++held;
    const bool isNone = held == name.end || space_.isAbsent(held);
    selection.push_back(isNone ? SearchSpace::none : held);
  }
  return selection;
}

}  // namespace tarn::evolution::pathfinder
