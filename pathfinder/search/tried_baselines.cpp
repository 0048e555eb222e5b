#include "pathfinder/search/tried_baselines.hpp"

#include <ostream>

#include "messages/trace.hpp"

namespace tarn::evolution::pathfinder {

void TriedBaselines::trace(const VersionBaseline& baseline) {
  constexpr auto level = diagnostics::TraceLevel::Reasoning;
  if ((diagnostics::logger.enabledLevels() & static_cast<unsigned>(level)) == 0) return;
  if (!told_.insert(baseline).second) return;
  diagnostics::trace(level, [&](std::ostream& out) {
    out << "Trying unvisited baseline with least weight: " << baseline;
  });
}

}  // namespace tarn::evolution::pathfinder
