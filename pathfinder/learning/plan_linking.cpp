// Depth first along dependencies, each version to those of the selection; what was linked of a
// version is kept by what was linked for its dependencies.

#include "pathfinder/learning/plan_linking.hpp"

#include <algorithm>
#include <numeric>

#include "messages/report_exception.hpp"
#include "pathfinder/learning/held_selections.hpp"
#include "pathfinder/limits/application_failure.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/baseline_combination.hpp"
#include "pathfinder/planning/step_digits.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

/// Whether a linked metamodel links more than what was chosen for its dependencies and comes with
/// that.
bool linksMoreThan(const LinkedMetamodel& linked, const OptionsByName& chosen) {
  const auto isExpected = [&](const auto& link) {
    return std::any_of(chosen.begin(), chosen.end(), [&](const auto& choice) {
      const auto& further = choice.second.front()->linkedMetamodels;
      return choice.first == link.first || further.contains(link.first);
    });
  };
  return !std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(), isExpected);
}

}  // namespace

std::optional<PlanLinking::Path> PlanLinking::carryOut(const BackwardPlan& plan,
                                                       std::vector<VersionIndex>& impossible) {
  std::vector<VersionBaseline> baselines;
  const std::vector<SelectionIndex> selections = plan.bestSelections();
  for (const SelectionIndex selection : selections) {
    auto baseline = hold(plan.selections()[selection], impossible);
    if (!baseline) return std::nullopt;
    traceTrying(*baseline);
    baselines.push_back(*std::move(baseline));
  }
  Path path{{}, baselines.front(), baselines.back()};
  for (std::size_t i = 0; i + 1 < baselines.size(); ++i) {
    plan.visit(
        plan.stepsFrom(selections[i]), [&](std::span<const PlannedHop> hops, SelectionIndex after) {
          const SelectionView before = plan.selections()[selections[i]];
          LockstepHop step;
          addHops(space_, before, digitsOf(space_, before, hops, plan.selections()[after]), step);
          path.steps.emplace_back(baselines[i], baselines[i + 1], std::move(step));
        });
  }
  return path;
}

/// The baseline of a selection; no value when it cannot be held.
std::optional<VersionBaseline> PlanLinking::hold(SelectionView selection,
                                                 std::vector<VersionIndex>& impossible) {
  linked_.assign(selection.size(), nullptr);
  try {
    for (NameIndex name = 0; name < selection.size(); ++name) {
      if (!space_.isAbsent(selection[name])) linkAll(selection, name);
    }
  } catch (const Conflict&) {
    impossible = withNeeds(selection, {space_.versions[underWay_].name});
    return std::nullopt;
  }
  std::vector<NameIndex> names;
  for (NameIndex name = 0; name < linked_.size(); ++name) {
    if (linked_[name] != nullptr) names.push_back(name);
  }
  auto baseline = combined(names);
  if (!baseline) {
    const auto [one, other] = findDisagreeing(names);
    impossible = withNeeds(selection, {one, other});
    return std::nullopt;
  }
  // The application may link what no dependency asks for.
  if (baseline->metamodels.size() != names.size()) throw NotLinkable();
  return baseline;
}

/// Two names whose linked metamodels cannot stand together: linked to one version of each name,
/// these cannot be combined only if some two of them link different ones of a third.
std::pair<NameIndex, NameIndex> PlanLinking::findDisagreeing(
    std::span<const NameIndex> names) const {
  std::vector<NameIndex> counts(names.size());  // how many of the first names
  std::iota(counts.begin(), counts.end(), NameIndex{1});
  const auto areCombined = [&](NameIndex count) {
    return combined(names.first(count)).has_value();
  };
  const NameIndex last = *std::partition_point(counts.begin(), counts.end(), areCombined) - 1;
  const auto disagrees = [&](NameIndex name) {
    const NameIndex both[] = {name, names[last]};
    return !combined(both);
  };
  return {*std::find_if(names.begin(), names.begin() + last, disagrees), names[last]};
}

/// The versions of these names and all that they were linked to.
std::vector<VersionIndex> PlanLinking::withNeeds(SelectionView selection,
                                                 std::vector<NameIndex> names) const {
  std::vector<bool> isIn(selection.size());
  std::vector<VersionIndex> versions;
  while (!names.empty()) {
    const NameIndex name = names.back();
    names.pop_back();
    if (isIn[name]) continue;
    isIn[name] = true;
    versions.push_back(selection[name]);
    const auto& needed = dependencies_.dependencies[selection[name]];
    names.insert(names.end(), needed.begin(), needed.end());
  }
  return versions;
}

std::optional<VersionBaseline> PlanLinking::combined(std::span<const NameIndex> names) const {
  std::vector<LinkedMetamodels> candidates;
  std::vector<Alternatives> alternatives;
  candidates.reserve(names.size());
  for (const NameIndex name : names) {
    candidates.push_back({linked_[name]});
    alternatives.push_back({&space_.names[name].text, &candidates.back()});
  }
  std::vector<VersionBaseline> result = combineInOrder(alternatives, Links::Closed);
  if (result.empty()) return std::nullopt;
  return std::move(result.front());
}

void PlanLinking::requireNoMoreLinks() {
  if (!mayBringIn_) return;
  HeldSelections selections(dependencies_);
  for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
    if (space_.isAbsent(version)) continue;
    while (!known_.contains(version) && selections.canHold(version)) {
      const VersionIndex failed = linkEach(selections.selection());
      if (failed != SearchSpace::none) selections.forbid(failed);
    }
  }
}

/// The version with which the application fails, if it does: whatever plan holds it will say so.
VersionIndex PlanLinking::linkEach(SelectionView selection) {
  linked_.assign(selection.size(), nullptr);
  bool isLinkable = true;
  const bool hasFailed = failureOf([&] {
                           try {
                             for (NameIndex name = 0; name < selection.size(); ++name) {
                               if (selection[name] != SearchSpace::none) linkAll(selection, name);
                             }
                           } catch (const Conflict&) {
                             isLinkable = false;
                           } catch (const NotLinkable&) {
                             isLinkable = false;
                           }
                         }) != nullptr;
  if (!isLinkable) throw NotLinkable();
  return hasFailed ? underWay_ : SearchSpace::none;
}

/// Links a name's version after all that it depends on.
void PlanLinking::linkAll(SelectionView selection, NameIndex root) {
  struct Pending {
    NameIndex name;
    std::size_t dependency = 0;  // to be linked next
  };
  std::vector<Pending> pending{{root}};
  while (!pending.empty()) {
    auto& [name, dependency] = pending.back();
    const auto& needed = dependencies_.dependencies[selection[name]];
    if (linked_[name] == nullptr && dependency < needed.size()) {
      const NameIndex next = needed[dependency++];
      if (linked_[next] != nullptr) continue;
      if (pending.size() > selection.size()) throw NotLinkable();
      pending.push_back({next});
      continue;
    }
    if (linked_[name] == nullptr) linked_[name] = link(selection, name);
    pending.pop_back();
  }
}

std::shared_ptr<LinkedMetamodel> PlanLinking::link(SelectionView selection, NameIndex name) {
  checkpoint();
  const Metamodel& descriptor = *space_.versions[selection[name]].descriptor;
  std::vector<const LinkedMetamodel*> key;
  OptionsByName chosen;
  for (const NameIndex needed : dependencies_.dependencies[selection[name]]) {
    key.push_back(linked_[needed].get());
  }
  auto& known = known_[selection[name]];
  const auto same = std::find_if(known.begin(), known.end(),
                                 [&](const auto& entry) { return entry.first == key; });
  if (same != known.end()) return same->second;
  for (const NameIndex needed : dependencies_.dependencies[selection[name]]) {
    chosen.emplace(space_.names[needed].text, LinkedMetamodels{linked_[needed]});
  }
  underWay_ = selection[name];
  auto linked = host_.linkAlone(descriptor, chosen);
  if (linked->linkedMetamodels.contains(linked->name)) throw NotLinkable();
  if (mayBringIn_ && linksMoreThan(*linked, chosen)) throw NotLinkable();
  known.emplace_back(std::move(key), linked);
  return linked;
}

}  // namespace tarn::evolution::pathfinder
