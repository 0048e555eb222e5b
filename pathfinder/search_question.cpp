#include "pathfinder/search_question.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

const VersionBaseline* SearchQuestion::targetIn(const VersionBaseline& baseline) const {
  const auto found =
      std::find_if(targets.begin(), targets.end(),
                   [&](const VersionBaseline& target) { return baseline.includes(target); });
  return found == targets.end() ? nullptr : &*found;
}

}  // namespace tarn::evolution::pathfinder
