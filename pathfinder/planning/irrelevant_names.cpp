// A name is irrelevant when every source holds one and the same linked metamodel under it, which
// links and requires nothing, no target asks for another, and nothing that a path may hold links or
// requires the name. A path that moves it is heavier than the same path without those hops;
// docs/search.md has the proof.
//
// Whether something links or requires the name is seen while the survey goes on: a name that is is
// taken up again then.

#include "pathfinder/planning/irrelevant_names.hpp"

#include <algorithm>
#include <exception>

#include "messages/report_exception.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

/// The linked metamodels of a descriptor; null when it cannot be linked, and so never be held. An
/// attempt to hold it, should there be one, reports the conflict.
const LinkedMetamodels* tryLink(SearchHost& host, const Metamodel& descriptor) {
  try {
    return &host.getLinkedMetamodels(descriptor);
  } catch (const Conflict&) {
    return nullptr;
  }
}

}  // namespace

IrrelevantNames::IrrelevantNames(const SearchQuestion& question, std::pmr::memory_resource* memory)
    : question_(question), linked_(memory) {
  if (question_.sources.empty()) return;
  for (const auto& [name, linked] : question_.sources.front().metamodels) {
    if (linked && linked->linkedMetamodels.empty() && maybeIrrelevant(name, linked)) {
      linked_.insert(linked.get());
    }
  }
}

bool IrrelevantNames::maybeIrrelevant(const std::u16string& name,
                                      const std::shared_ptr<LinkedMetamodel>& linked) const {
  const auto holdsIt = [&](const VersionBaseline& source) {
    const auto held = source.metamodels.find(name);
    return held != source.metamodels.end() && held->second == linked;
  };
  const auto admitsIt = [&](const VersionBaseline& target) {
    const auto held = target.metamodels.find(name);
    return held == target.metamodels.end() || held->second == linked;
  };
  const auto& targets = question_.targets;
  const auto& sources = question_.sources;
  if (!std::all_of(targets.begin(), targets.end(), admitsIt)) return false;
  if (!std::all_of(sources.begin() + 1, sources.end(), holdsIt)) return false;
  // Only what a repository has made itself is in the baselines after a step.
  const auto* own = tryLink(question_.host, *linked);
  return linked->name == name && own != nullptr && own->front() == linked &&
         (!question_.host.hasRequirements() || question_.host.requirementsOf(*linked).empty());
}

const std::pair<const std::u16string, std::shared_ptr<LinkedMetamodel>>* IrrelevantNames::find(
    const std::u16string& name) const {
  if (linked_.empty()) return nullptr;
  const auto& held = question_.sources.front().metamodels;
  const auto entry = held.find(name);
  return entry != held.end() && entry->second && contain(*entry->second) ? &*entry : nullptr;
}

}  // namespace tarn::evolution::pathfinder
