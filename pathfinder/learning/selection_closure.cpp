// The versions that may be brought in are a fixpoint: those that versions met before admit. A name
// is certain to be held when it is selected, or when every version of some certain name depends on
// it.
//
// The first baseline is found by a formula, one literal for each version: at most one version of
// each name, those that are selected, beside each version one that it admits of each name that it
// depends on, and beside each that is not selected one that depends on it; none beside one that
// requires another of its name. Choices are decided in
// order, each at the first version that the formula allows.

#include "pathfinder/learning/selection_closure.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "pathfinder/learning/own_names.hpp"
#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/values/name_order.hpp"

namespace tarn::evolution::pathfinder {

std::vector<const Dependency*> dependenciesInLinkingOrder(const Metamodel& metamodel) {
  std::map<std::u16string, const Dependency*> dependencies;
  OptionsByName order;  // yields names as linking does, the least significant first
  for (const Dependency& dependency : metamodel.dependencies) {
    if (dependency.name == metamodel.name) throw NotForDependencies();
    if (!order.try_emplace(dependency.name).second) throw NotForDependencies();
    dependencies.emplace(dependency.name, &dependency);
  }
  std::vector<const Dependency*> result;
  for (const auto& [name, options] : order) result.push_back(dependencies.at(name));
  std::reverse(result.begin(), result.end());
  return result;
}

SelectionClosure::SelectionClosure(SelectionHost& host, const VersionsByName& selection) {
  if (selection.empty()) throw NotForDependencies();
  std::set<std::u16string> selected;
  for (const auto& [name, version] : selection) {
    auto descriptor = host.getMetamodel(name, version);
    if (!descriptor) reportUnknownVersion(name, version);
    if (descriptor->name != name) throw NotForDependencies();
    selected.insert(name);
    addVersion(name, *std::move(descriptor));
  }
  for (const auto& [name, versions] : names_) selected_.push_back(&name);
  bringIn(host);
  refuseOwnNames();
  for (auto& [name, versions] : names_) {
    for (Version& version : versions) addRefusals(host, name, version);
  }
  findCertainNames();
}

void SelectionClosure::bringIn(SelectionHost& host) {
  // Versions are added on the way.
  for (std::size_t i = 0; i < added_.size(); ++i) {  // NOLINT(modernize-loop-convert)
    checkpoint();
    addNeeds(host, *added_[i].first, added_[i].second);
  }
}

void SelectionClosure::addNeeds(SelectionHost& host, const std::u16string& name,
                                std::size_t place) {
  Version& version = names_.at(name)[place];
  std::vector<Metamodel> candidates;
  for (const Dependency* dependency : dependenciesInLinkingOrder(version.descriptor)) {
    candidates.clear();
    host.findMetamodels(dependency->name, dependency->range, candidates);
    const auto known = names_.try_emplace(dependency->name).first;
    Version::Need& need = version.needs.emplace_back(Version::Need{&known->first, {}});
    for (Metamodel& candidate : candidates) {
      if (candidate.name != dependency->name) throw NotForDependencies();
      if (!isSelected(dependency->name)) {
        need.admitted.push_back(addVersion(known->first, std::move(candidate)));
      } else if (known->second.front().descriptor == candidate) {
        need.admitted.push_back(0);
      }
    }
  }
}

void SelectionClosure::refuseOwnNames() const {
  std::map<std::u16string_view, std::size_t> numbers;
  std::map<std::u16string_view, std::size_t> first;
  std::size_t count = 0;
  for (const auto& [name, versions] : names_) {
    numbers.emplace(name, numbers.size());
    first.emplace(name, count);
    count += versions.size();
  }
  std::vector<NeedingVersion> all;
  all.reserve(count);
  for (const auto& [name, versions] : names_) {
    for (const Version& version : versions) {
      NeedingVersion& added = all.emplace_back(NeedingVersion{numbers.at(name)});
      for (const auto& [needed, admitted] : version.needs) {
        auto& need = added.needs.emplace_back(NeedingVersion::Need{numbers.at(*needed), {}});
        for (const std::size_t place : admitted) need.admitted.push_back(first.at(*needed) + place);
      }
    }
  }
  if (mayBringInOwnName(all, names_.size())) throw NotForDependencies();
}

/// Once all versions that may be held are known.
void SelectionClosure::addRefusals(SelectionHost& host, const std::u16string& name,
                                   Version& version) {
  std::vector<PeerRequirement> required;
  host.findRequirements(version.descriptor, required);
  std::vector<Metamodel> candidates;
  for (const PeerRequirement& requirement : required) {
    const auto known = names_.find(requirement.name);
    if (known == names_.end()) continue;
    if (known->first == name) throw NotForDependencies();
    candidates.clear();
    host.findMetamodels(requirement.name, requirement.range, candidates);
    Version::Refusal& refusal = version.refusals.emplace_back(Version::Refusal{&known->first, {}});
    for (std::size_t place = 0; place < known->second.size(); ++place) {
      const Metamodel& held = known->second[place].descriptor;
      if (std::find(candidates.begin(), candidates.end(), held) == candidates.end()) {
        refusal.refused.push_back(place);
      }
    }
  }
}

std::size_t SelectionClosure::addVersion(const std::u16string& name, Metamodel&& descriptor) {
  const auto entry = names_.try_emplace(name).first;
  std::deque<Version>& versions = entry->second;
  const auto known = std::find_if(versions.begin(), versions.end(), [&](const Version& version) {
    return version.descriptor == descriptor;
  });
  const auto place = static_cast<std::size_t>(known - versions.begin());
  if (known == versions.end()) {
    versions.push_back({std::move(descriptor)});
    added_.emplace_back(&entry->first, place);
  }
  return place;
}

void SelectionClosure::findCertainNames() {
  std::vector<const std::u16string*> open(selected_);
  for (const std::u16string* name : selected_) certain_.insert(*name);
  while (!open.empty()) {
    const std::deque<Version>& versions = names_.at(*open.back());
    open.pop_back();
    if (versions.empty()) continue;
    for (const Version::Need& need : versions.front().needs) {
      const bool isNeededByAll =
          std::all_of(versions.begin(), versions.end(), [&](const Version& version) {
            return std::any_of(version.needs.begin(), version.needs.end(),
                               [&](const auto& other) { return other.name == need.name; });
          });
      if (isNeededByAll && certain_.insert(*need.name).second) open.push_back(need.name);
    }
  }
}

/// Adds what makes a baseline of the versions that are held, one literal for each.
SelectionClosure::LiteralsByName SelectionClosure::addBaseline(SatSolver& solver) const {
  LiteralsByName held;
  std::map<std::u16string, std::vector<std::vector<Literal>>> needing;  // by version
  for (const auto& [name, versions] : names_) {
    auto& literals = held[name];
    for (std::size_t i = 0; i < versions.size(); ++i) literals.push_back(solver.newVariable());
    solver.addAtMostOne(literals);
    needing[name].resize(versions.size());
    if (isSelected(name)) solver.addClause({literals.front()});
  }
  for (const auto& [name, versions] : names_) {
    for (std::size_t i = 0; i < versions.size(); ++i) {
      const Literal isHeld = held.at(name)[i];
      for (const Version::Need& need : versions[i].needs) {
        const std::vector<Literal>& needed = held.at(*need.name);
        auto& neededBy = needing.at(*need.name);
        std::vector<Literal> clause{-isHeld};
        for (const std::size_t place : need.admitted) {
          clause.push_back(needed[place]);
          neededBy[place].push_back(isHeld);
        }
        solver.addClause(clause);
      }
      for (const Version::Refusal& refusal : versions[i].refusals) {
        const std::vector<Literal>& refused = held.at(*refusal.name);
        for (const std::size_t place : refusal.refused)
          solver.addClause({-isHeld, -refused[place]});
      }
    }
  }
  for (auto& [name, byVersion] : needing) {
    for (std::size_t i = 0; i < byVersion.size() && !isSelected(name); ++i) {
      byVersion[i].push_back(-held[name][i]);
      solver.addClause(byVersion[i]);
    }
  }
  return held;
}

std::optional<std::map<std::u16string, const Metamodel*>> SelectionClosure::firstBaseline() const {
  SatSolver solver;
  const LiteralsByName held = addBaseline(solver);
  std::vector<Literal> decided;
  if (!solver.solve(decided)) return std::nullopt;
  std::map<std::u16string, const Metamodel*> baseline;
  for (const std::u16string* name : selected_)
    baseline.emplace(*name, &names_.at(*name)[0].descriptor);
  visitInOrder([&](const std::u16string& name, const std::vector<std::size_t>& places) {
    for (const std::size_t place : places) {
      decided.push_back(held.at(name)[place]);
      if (solver.solve(decided)) {
        baseline.emplace(name, &names_.at(name)[place].descriptor);
        return place;
      }
      decided.pop_back();
    }
    throw NotForDependencies();  // there is always one
  });
  return baseline;
}

}  // namespace tarn::evolution::pathfinder
