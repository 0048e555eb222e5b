// In place of all other sources of this folder, in builds without the solver.

#include "pathfinder/learning/blocked_question_search.hpp"
#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/learning/selection_search.hpp"

namespace tarn::evolution::pathfinder {

const SecondPlanner* learningPlanner() {
  return nullptr;
}

std::unique_ptr<BlockedQuestion> poseBlockedQuestion(VersionRepository& /*repository*/,
                                                     const BlockedQuestion::Selection& /*from*/,
                                                     const BlockedQuestion::Selection& /*to*/,
                                                     Direction /*direction*/) {
  return nullptr;
}

SelectionAnswer searchBetweenSelections(SelectionHost& /*host*/, const VersionsByName& /*from*/,
                                        const VersionsByName& /*to*/) {
  return {false};
}

}  // namespace tarn::evolution::pathfinder
