#include "pathfinder/search/search_question.hpp"

#include <algorithm>

#include "pathfinder/search/tried_baselines.hpp"

namespace tarn::evolution::pathfinder {

void SearchQuestion::traceTrying(const VersionBaseline& baseline) const {
  if (tried != nullptr) {
    tried->trace(baseline);
  } else {
    TriedBaselines().trace(baseline);
  }
}

const VersionBaseline* SearchQuestion::targetIn(const VersionBaseline& baseline) const {
  const auto found =
      std::find_if(targets.begin(), targets.end(),
                   [&](const VersionBaseline& target) { return baseline.includes(target); });
  return found == targets.end() ? nullptr : &*found;
}

}  // namespace tarn::evolution::pathfinder
