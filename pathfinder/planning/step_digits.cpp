#include "pathfinder/planning/step_digits.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

namespace {

std::uint32_t digitOf(const SearchSpace& space, VersionIndex version, PlannedHop hop,
                      VersionIndex after) {
  if (hop == PlannedHop::None) return 0;
  const auto& moves = space.versions[version].moves;
  const auto move =
      std::find_if(moves.begin(), moves.end(), [&](const SearchSpace::Move& candidate) {
        return candidate.target == after && candidate.expensive == (hop == PlannedHop::Expensive);
      });
  return move->place + 1;
}

}  // namespace

StepDigits digitsOf(const SearchSpace& space, SelectionView before,
                    std::span<const PlannedHop> hops, SelectionView after) {
  StepDigits digits;
  digits.reserve(before.size());
  for (std::size_t name = before.size(); name-- > 0;) {
    digits.push_back(digitOf(space, before[name], hops[name], after[name]));
  }
  return digits;
}

void addHops(const SearchSpace& space, SelectionView before, const StepDigits& digits,
             LockstepHop& hops) {
  for (NameIndex name = 0; name < before.size(); ++name) {
    const std::uint32_t digit = digits[before.size() - 1 - name];
    if (digit == 0) continue;
    hops.emplace(space.names[name].text, space.versions[before[name]].hops[digit - 1]);
  }
}

}  // namespace tarn::evolution::pathfinder
