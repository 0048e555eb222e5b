#include "pathfinder/search/search_question.hpp"

#include <algorithm>
#include <ostream>

#include "messages/trace.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;

void traceTrying(const VersionBaseline& baseline) {
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "Trying unvisited baseline with least weight: " << baseline;
  });
}

void SearchQuestion::traceTrying(const VersionBaseline& baseline) const {
  if (!diagnostics::isTraced(TraceLevel::Reasoning)) return;
  if (tried == nullptr || tried->insert(baseline).second) pathfinder::traceTrying(baseline);
}

const VersionBaseline* SearchQuestion::targetIn(const VersionBaseline& baseline) const {
  const auto found =
      std::find_if(targets.begin(), targets.end(),
                   [&](const VersionBaseline& target) { return baseline.includes(target); });
  return found == targets.end() ? nullptr : &*found;
}

}  // namespace tarn::evolution::pathfinder
