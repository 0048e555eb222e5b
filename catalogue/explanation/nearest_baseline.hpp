#pragma once

#include <optional>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/posed_question.hpp"

namespace tarn::evolution::catalogue {

/// The nearest baseline that can be reached, as `NearestBaseline` defines it.
///
/// Where the question can be asked why it has no path, that is one question. Otherwise first finds
/// all largest sets of goals that can be reached together: whatever the goals that are given up,
/// they must hit every set of goals known to block one another; the smallest such choice is tried,
/// and where it is not enough, the goals left hold another blocking set. Then looks for the fewest
/// hops left: asks at once for all selections that have the same number of them left, upward from
/// what each metamodel needs at least. Both stop when the inquiry allows no more questions; then
/// goals are added one by one to the best set known, which takes up to one more question for each,
/// unless a limit is reached.
NearestBaseline findNearestBaseline(const PosedQuestion& question);

/// The reachable baseline with the fewest hops left from which each goal still has its chain of
/// hops, with no regard to how many are at their target version. One question where that can be
/// asked. None when the inquiry allows no
/// more questions, or when a goal has no chain or is a newcomer without starts.
std::optional<pathfinder::VersionBaseline> findClosestBaseline(const PosedQuestion& question);

}  // namespace tarn::evolution::catalogue
