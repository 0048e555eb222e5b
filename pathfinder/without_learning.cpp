// In place of the folder `learning/`, and of what stands over it alone, in builds without the
// solver.

#include "pathfinder/blocked_question.hpp"
#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/learning/selection_search.hpp"

namespace tarn::evolution::pathfinder {

const SecondPlanner* learningPlanner() {
  return nullptr;
}

BlockedQuestion::BlockedQuestion() = default;

BlockedQuestion::~BlockedQuestion() = default;

std::unique_ptr<BlockedQuestion> BlockedQuestion::pose(VersionRepository& /*repository*/,
                                                       const Selection& /*from*/,
                                                       const Selection& /*to*/,
                                                       VersionRepository::Direction /*direction*/,
                                                       const SearchLimits& /*limits*/) {
  return nullptr;
}

SelectionAnswer searchBetweenSelections(SelectionHost& /*host*/,
                                        const SelectionQuestion& /*question*/,
                                        SelectionPlanning /*planning*/) {
  return {false};
}

SelectionDirection directionBetweenSelections(SelectionHost& /*host*/,
                                              const SelectionQuestion& /*question*/) {
  return {false};
}

}  // namespace tarn::evolution::pathfinder
