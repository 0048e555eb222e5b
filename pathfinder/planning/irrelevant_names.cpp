#include "pathfinder/planning/irrelevant_names.hpp"

#include <algorithm>

#include "pathfinder/link_attempt.hpp"

namespace tarn::evolution::pathfinder {

Bystanders::Bystanders(const SearchQuestion& question, std::pmr::memory_resource* memory)
    : question_(question), linked_(memory) {
  if (question.sources.empty()) return;
  for (const auto& [name, linked] : question.sources.front().metamodels) {
    if (linked && linked->dependencies.empty() && mayStandBy(name, linked)) {
      linked_.insert(linked.get());
    }
  }
}

bool Bystanders::mayStandBy(const std::u16string& name,
                            const std::shared_ptr<LinkedMetamodel>& linked) const {
  const auto holdsIt = [&](const VersionBaseline& source) {
    const auto held = source.metamodels.find(name);
    return held != source.metamodels.end() && held->second == linked;
  };
  const auto admitsIt = [&](const VersionBaseline& target) {
    const auto held = target.metamodels.find(name);
    return held == target.metamodels.end() || held->second == linked;
  };
  const auto& [repository, sources, targets, direction, known] = question_;
  if (!std::all_of(targets.begin(), targets.end(), admitsIt)) return false;
  if (!std::all_of(sources.begin() + 1, sources.end(), holdsIt)) return false;
  const auto* own = tryLink(repository, *linked);
  return linked->name == name && own != nullptr && own->front() == linked;
}

const std::pair<const std::u16string, std::shared_ptr<LinkedMetamodel>>* Bystanders::find(
    const std::u16string& name) const {
  if (linked_.empty()) return nullptr;
  const auto& held = question_.sources.front().metamodels;
  const auto entry = held.find(name);
  return entry != held.end() && contain(*entry->second) ? &*entry : nullptr;
}

}  // namespace tarn::evolution::pathfinder
