#include "pathfinder/path_search.hpp"

#include <ostream>
#include <utility>

#include "messages/scoped_event.hpp"
#include "messages/trace.hpp"
#include "pathfinder/exhaustive_search.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

void traceQuestion(const std::vector<VersionBaseline>& sources,
                   const std::vector<VersionBaseline>& targets,
                   VersionRepository::Direction direction) {
  traceValue("Finding path from one of:");
  for (const VersionBaseline& source : sources) traceValue(source);
  traceValue("TO one of:");
  for (const VersionBaseline& target : targets) traceValue(target);
  traceValue("End of list");
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "Direction is " << VersionRepository::getDirectionString(direction);
  });
}

}  // namespace

std::optional<std::vector<BaselineHop>> answerPathQuestion(
    VersionRepository& repository, PathCache& cache, const std::vector<VersionBaseline>& sources,
    const std::vector<VersionBaseline>& targets, VersionRepository::Direction direction) {
  static const instrument::Handle& handle =
      instrument::controls.getHandle("VersionRepository::findPath");
  const diagnostics::ScopedEvent event(handle);
  traceQuestion(sources, targets, direction);
  if (auto cached = cache.find(sources, targets)) return cached;
  std::optional<FoundPath> found = searchExhaustively(repository, sources, targets, direction);
  if (!found) return std::nullopt;
  if (!found->steps.empty()) cache.store(found->steps, *found->target);
  return std::move(found->steps);
}

}  // namespace tarn::evolution::pathfinder
