#include "pathfinder/step_generation.hpp"

#include <ostream>

#include "messages/trace.hpp"
#include "pathfinder/hop_collection.hpp"
#include "pathfinder/name_order.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

HopChoices collectAllHops(VersionRepository& repository, const VersionBaseline& from,
                          VersionRepository::Direction direction) {
  HopChoices choices;
  choices.byName.reserve(from.metamodels.size());
  for (const auto* entry : inNameOrder(from.metamodels)) {
    collectHops(repository, direction, entry->first, *entry->second, choices);
  }
  return choices;
}

/// The hops of a combination index read as a mixed-radix number, the first name its least
/// significant digit.
LockstepHop decodeCombination(std::uint64_t index, const HopChoices& choices) {
  LockstepHop combination;
  for (const MetamodelHops& choice : choices.byName) {
    const std::uint64_t radix = choice.hops.size() + 1;
    const std::uint64_t digit = index % radix;
    index /= radix;
    if (digit != 0) combination.emplace(choice.name, choice.hops[digit - 1]);
  }
  return combination;
}

/// Appends one step for each baseline that the combination leads to.
void attempt(VersionRepository& repository, const VersionBaseline& from,
             const LockstepHop& combination, std::vector<BaselineHop>& steps) {
  trace(TraceLevel::Reasoning,
        [&](std::ostream& out) { out << "Attempting " << dumpLockstepHop(combination); });
  const std::vector<VersionBaseline> candidates =
      repository.createTargetBaseline(from, combination);
  if (candidates.empty()) {
    traceValue("\tConflict found while creating target baseline, Ignored");
    return;
  }
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "\tHop produced " << candidates.size() << " candidates:";
  });
  for (const VersionBaseline& candidate : candidates) {
    steps.emplace_back(from, candidate, combination);
    trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << "\t\t" << candidate; });
  }
  traceValue("\tEnd of list of hops");
}

}  // namespace

std::vector<BaselineHop> generateSteps(VersionRepository& repository, const VersionBaseline& from,
                                       VersionRepository::Direction direction) {
  trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << "getStepsFrom " << from; });
  const HopChoices choices = collectAllHops(repository, from, direction);
  std::vector<BaselineHop> steps;
  steps.reserve(choices.permutationCount);
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "count of possible hop permutations=" << choices.permutationCount;
  });
  for (std::uint64_t index = 1; index < choices.permutationCount; ++index) {
    attempt(repository, from, decodeCombination(index, choices), steps);
  }
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "getStepsFrom " << from << " RETURNS " << steps.size() << " items:";
  });
  for (const BaselineHop& step : steps) traceValue(step.to);
  return steps;
}

}  // namespace tarn::evolution::pathfinder
