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
