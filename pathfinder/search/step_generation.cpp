// Enumeration of a product by counting: combination `index` is read as a mixed-radix number whose
// digits are the hops of the metamodels, the first name the least significant.

#include "pathfinder/search/step_generation.hpp"

#include <limits>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "messages/trace.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/search/hop_collection.hpp"
#include "pathfinder/search/target_baseline.hpp"
#include "pathfinder/values/name_order.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

StepGeneration::StepGeneration(SearchHost& host, const VersionBaseline& from, Direction direction,
                               std::uint64_t budget)
    : host_(host), from_(from) {
  trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << "getStepsFrom " << from_; });
  choices_.reserve(from_.metamodels.size());
  visitInNameOrder(from_.metamodels, [&](const auto& entry) {
    if (!entry.second) return true;
    choices_.push_back({entry.first, collectHops(host_, direction, entry.first, *entry.second)});
    const std::uint64_t radix = choices_.back().hops.size() + 1;
    if (__builtin_mul_overflow(combinations_, radix, &combinations_)) {
      combinations_ = std::numeric_limits<std::uint64_t>::max();
    }
    return combinationCount() <= budget;
  });
}

std::vector<BaselineHop> StepGeneration::run() {
  if (combinations_ > steps_.max_size()) {
    throw std::length_error("more combinations of hops than a list of steps can hold");
  }
  return tryAll(combinations_);
}

std::vector<BaselineHop> StepGeneration::runReserved() {
  std::uint64_t combinations = 1;
  for (const Choice& choice : choices_) combinations *= choice.hops.size() + 1;
  steps_.reserve(combinations);
  return tryAll(combinations);
}

std::vector<BaselineHop> StepGeneration::tryAll(std::uint64_t combinations) {
  trace(TraceLevel::Reasoning,
        [&](std::ostream& out) { out << "count of possible hop permutations=" << combinations; });
  for (std::uint64_t index = 1; index < combinations; ++index) {
    attempt(decode(index));
  }
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "getStepsFrom " << from_ << " RETURNS " << steps_.size() << " items:";
  });
  for (const BaselineHop& step : steps_) traceValue(step.to);
  return std::move(steps_);
}

LockstepHop StepGeneration::decode(std::uint64_t combination) const {
  LockstepHop hops;
  for (const Choice& choice : choices_) {
    const std::uint64_t radix = choice.hops.size() + 1;
    const std::uint64_t digit = combination % radix;
    combination /= radix;
    if (digit != 0) hops.emplace(choice.name, choice.hops[digit - 1]);
  }
  return hops;
}

/// Adds one step for each baseline that the combination leads to.
void StepGeneration::attempt(const LockstepHop& combination) {
  checkpoint();
  traceAttempt(combination);
  const std::vector<VersionBaseline> candidates = findTargetBaselines(host_, from_, combination);
  for (const VersionBaseline& candidate : candidates) {
    steps_.emplace_back(from_, candidate, combination);
  }
  traceCandidates(candidates);
}

void traceAttempt(const LockstepHop& combination) {
  trace(TraceLevel::Reasoning,
        [&](std::ostream& out) { out << "Attempting " << dumpLockstepHop(combination); });
}

void traceCandidates(const std::vector<VersionBaseline>& candidates) {
  if (candidates.empty()) {
    traceValue("\tConflict found while creating target baseline, Ignored");
    return;
  }
  trace(TraceLevel::Reasoning, [&](std::ostream& out) {
    out << "\tHop produced " << candidates.size() << " candidates:";
  });
  for (const VersionBaseline& candidate : candidates) {
    trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << "\t\t" << candidate; });
  }
  traceValue("\tEnd of list of hops");
}

}  // namespace tarn::evolution::pathfinder
