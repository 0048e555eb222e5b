// A formula in which each name may be present or not, and in which two versions of names that are
// exclude each other if nothing is left to some third name. Plans that it allows are looked at step
// by step; versions that cannot be held together all the same are forbidden for good.
//
// The proof asks anew, with a literal for each such set of versions that lets it count: those that
// are not needed are left out one after the other. One that a refutation has not used need not be
// asked about.

#include "pathfinder/learning/blocking_names.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

std::optional<PlanNetwork> networkOfAll(
    const DependencySpace& dependencies,
    const std::vector<Compatibility::Requirement>& requirements) {
  const SearchSpace& space = *dependencies.space;
  const Compatibility compatibility(space, requirements);
  const AllVersionBounds bounds(space.versions.size(), VersionBounds{.isReachable = true});
  const VersionSelection anywhere(space.names.size(), SearchSpace::none);
  const LapLimits oneLap{std::vector<std::uint32_t>(space.names.size(), 1)};
  return makePlanNetwork({space, compatibility, bounds}, {anywhere}, nullptr, &dependencies.start(),
                         oneLap);
}

BlockingNames::BlockingNames(const DependencySpace& dependencies, FreeVersions& free)
    : dependencies_(dependencies),
      space_(*dependencies.space),
      free_(free),
      network_(networkOfAll(dependencies, free.requirements()).value()),
      plans_(network_, PlanFormula::Names::Any) {
  beginAtSource(plans_);
  for (NameIndex name = 0; name < space_.names.size(); ++name) {
    arrives_.push_back(arrival(plans_, name));
  }
}

/// Lets names begin at what some source holds, of which the names that are left out are a part.
void BlockingNames::beginAtSource(PlanSolver& plans) const {
  std::map<VersionIndex, Literal> isChosen;
  for (const std::vector<VersionIndex>& versions : dependencies_.start().versions) {
    std::vector<Literal> chosen;
    for (const VersionIndex version : versions) {
      chosen.push_back(plans.sat.newVariable());
      isChosen.emplace(version, chosen.back());
      plans.sat.addClause({-plans.formula.startsAt(network_.nodeOf[version]), chosen.back()});
    }
    plans.sat.addExactlyOne(chosen);
  }
  for (const Compatibility::Requirement& requirement : dependencies_.requirements) {
    const auto start = isChosen.find(requirement.version);
    if (start == isChosen.end()) continue;
    std::vector<Literal> clause{-start->second};
    for (const VersionIndex admitted : requirement.admitted) {
      if (const auto other = isChosen.find(admitted); other != isChosen.end()) {
        clause.push_back(other->second);
      }
    }
    plans.sat.addClause(clause);
  }
}

/// A literal that is true if the plan is about the name, and ends where it is to end.
Literal BlockingNames::arrival(PlanSolver& plans, NameIndex name) const {
  const Literal present = plans.formula.isPresent(name);
  const VersionIndex goal = dependencies_.target[name];
  const auto& lost = dependencies_.lost;
  if (std::find(lost.begin(), lost.end(), name) != lost.end()) return plans.formula.never();
  if (goal == SearchSpace::none) return present;
  const Literal result = plans.sat.newVariable();
  const Literal end = plans.formula.endsAt(network_.nodeOf[goal]);
  plans.sat.addClause({-result, present});
  plans.sat.addClause({-result, end});
  plans.sat.addClause({-end, result});
  return result;
}

std::vector<NodeIndex> BlockingNames::nodesOf(std::span<const VersionIndex> versions) const {
  std::vector<NodeIndex> nodes;
  for (const VersionIndex version : versions) nodes.push_back(network_.nodeOf[version]);
  return nodes;
}

bool BlockingNames::canArrive(const ChosenItems& names) {
  std::vector<Literal> assumptions;
  for (NameIndex name = 0; name < names.size(); ++name) {
    if (names[name]) assumptions.push_back(arrives_[name]);
  }
  do {
    if (!plans_.findPlan(assumptions)) return false;
    arrived_.clear();
    for (const Literal arrives : arrives_) arrived_.push_back(plans_.sat.isTrue(arrives));
  } while (learnFromPlan());
  return true;
}

/// Whether any selection of the plan found last cannot be held. Forbids that.
bool BlockingNames::learnFromPlan() {
  VersionSelection held(space_.names.size(), SearchSpace::none);
  for (NameIndex name = 0; name < held.size(); ++name) {
    if (arrived_[name]) held[name] = network_.nodes[plans_.check.nodesOf(name).front()].version;
  }
  bool anyLearnt = learnFrom(held);
  for (const std::vector<ArcIndex>& step : plans_.check.steps()) {
    bool anyMoved = false;
    for (const ArcIndex arc : step) {
      const PlanNetwork::Node& node = network_.nodes[network_.arcs[arc].to];
      if (!arrived_[node.name]) continue;
      held[node.name] = node.version;
      anyMoved = true;
    }
    if (anyMoved) anyLearnt |= learnFrom(held);
  }
  return anyLearnt;
}

bool BlockingNames::learnFrom(const VersionSelection& held) {
  std::vector<VersionIndex> versions;
  std::copy_if(held.begin(), held.end(), std::back_inserter(versions),
               [](VersionIndex version) { return version != SearchSpace::none; });
  std::vector<VersionIndex> conflict = free_.findConflict(versions);
  if (conflict.empty()) return false;
  const bool isNew = std::find(conflicts_.begin(), conflicts_.end(), conflict) == conflicts_.end();
  if (isNew) {
    plans_.formula.forbidTogether(nodesOf(conflict));
    conflicts_.push_back(std::move(conflict));
  }
  return true;
}

bool BlockingNames::agree(ChosenItems& names) {
  if (!canArrive(names)) return false;
  names = arrived_;
  for (NameIndex name = 0; name < names.size(); ++name) {
    if (names[name]) continue;
    names[name] = true;
    if (canArrive(names)) {
      names = arrived_;
    } else {
      names[name] = false;
    }
  }
  return true;
}

void BlockingNames::reduce(ChosenItems& names) {
  const auto keepWhatFailed = [&] {
    for (NameIndex name = 0; name < names.size(); ++name) {
      names[name] = names[name] && plans_.sat.hasFailed(arrives_[name]);
    }
  };
  if (!canArrive(names)) keepWhatFailed();
  for (NameIndex name = 0; name < names.size(); ++name) {
    if (!names[name]) continue;
    ChosenItems others = names;
    others[name] = false;
    if (canArrive(others)) continue;
    names = std::move(others);
    keepWhatFailed();
  }
}

/// In ascending order.
std::vector<std::vector<VersionIndex>> BlockingNames::conflictsAmong(
    const ChosenItems& names) const {
  std::vector<std::vector<VersionIndex>> result;
  for (const PlanNetwork::Neighbours& neighbours : network_.neighbours) {
    if (!names[neighbours.left] || !names[neighbours.right]) continue;
    for (const auto& [left, right] : neighbours.incompatible) {
      result.push_back({network_.nodes[left].version, network_.nodes[right].version});
    }
  }
  for (const std::vector<VersionIndex>& conflict : conflicts_) {
    const bool isAmong = std::all_of(conflict.begin(), conflict.end(), [&](VersionIndex version) {
      return names[space_.versions[version].name];
    });
    if (isAmong) result.push_back(conflict);
  }
  std::sort(result.begin(), result.end());
  return result;
}

std::vector<std::vector<VersionIndex>> BlockingNames::proof(const ChosenItems& names) {
  std::vector<std::vector<VersionIndex>> conflicts = conflictsAmong(names);
  PlanNetwork unordered = network_;
  unordered.neighbours.clear();
  PlanSolver plans(unordered, PlanFormula::Names::Any);
  beginAtSource(plans);
  std::vector<Literal> assumptions;
  for (NameIndex name = 0; name < names.size(); ++name) {
    assumptions.push_back(names[name] ? arrival(plans, name) : -plans.formula.isPresent(name));
  }
  std::vector<Literal> counts;
  for (const std::vector<VersionIndex>& conflict : conflicts) {
    counts.push_back(plans.sat.newVariable());
    plans.formula.forbidTogether(nodesOf(conflict), -counts.back());
  }
  std::vector<bool> isKept(conflicts.size(), true);
  std::vector<bool> isUsed(conflicts.size(), true);  // in the refutation found last
  const auto isRefuted = [&] {
    std::vector<Literal> assumed = assumptions;
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
      if (isKept[i]) assumed.push_back(counts[i]);
    }
    if (plans.findPlan(assumed)) return false;
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
      isUsed[i] = isKept[i] && plans.sat.hasFailed(counts[i]);
    }
    return true;
  };
  isRefuted();
  std::vector<std::vector<VersionIndex>> result;
  for (std::size_t i = 0; i < conflicts.size(); ++i) {
    isKept[i] = false;
    if (!isUsed[i] || isRefuted()) continue;
    isKept[i] = true;
    result.push_back(conflicts[i]);
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
