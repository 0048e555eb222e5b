// In place of all other sources of this folder, in builds without the solver.

#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/learning/selection_search.hpp"

namespace tarn::evolution::pathfinder {

const SecondPlanner* learningPlanner() {
  return nullptr;
}

SelectionAnswer searchBetweenSelections(SelectionHost& /*host*/, const VersionsByName& /*from*/,
                                        const VersionsByName& /*to*/) {
  return {false};
}

}  // namespace tarn::evolution::pathfinder
