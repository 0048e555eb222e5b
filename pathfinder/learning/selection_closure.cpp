// The versions that may be brought in are a fixpoint: those that versions met before admit. A name
// is certain to be held when it is selected, or when every version of some certain name depends on
// it.
//
// The first baseline is found by a formula, one literal for each version: one version of each name,
// and beside each version one that it admits of each name that it depends on. Choices are decided
// in order, each at the first version that the formula allows.

#include "pathfinder/learning/selection_closure.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/values/name_order.hpp"

namespace tarn::evolution::pathfinder {

SelectionClosure::SelectionClosure(SelectionHost& host, const VersionsByName& selection) {
  if (selection.empty()) throw NotClosed();
  std::set<std::u16string> selected;
  for (const auto& [name, version] : selection) {
    auto descriptor = host.getMetamodel(name, version);
    if (!descriptor) reportUnknownVersion(name, version);
    if (descriptor->name != name) throw NotClosed();
    selected.insert(name);
    addVersion(name, *std::move(descriptor));
  }
  for (const auto& [name, versions] : names_) selected_.push_back(&name);
  bringIn(host);
  requireCertainNames();
  for (auto& [name, versions] : names_) {
    for (Version& version : versions) addRequired(host, name, version);
  }
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
  OptionsByName order;  // yields names as linking does
  std::vector<Metamodel> candidates;
  std::map<std::u16string, Version::Need> needs;
  for (const Dependency& dependency : version.descriptor.dependencies) {
    if (dependency.name == name) throw NotClosed();
    if (!order.try_emplace(dependency.name).second) throw NotClosed();
    candidates.clear();
    host.findMetamodels(dependency.name, dependency.range, candidates);
    const auto known = names_.try_emplace(dependency.name).first;
    const bool isSelected = std::any_of(selected_.begin(), selected_.end(),
                                        [&](const auto* one) { return one == &known->first; });
    Version::Need& need = needs[dependency.name];
    need.name = &known->first;
    for (Metamodel& candidate : candidates) {
      if (candidate.name != dependency.name) throw NotClosed();
      if (!isSelected) {
        need.admitted.push_back(addVersion(known->first, std::move(candidate)));
      } else if (known->second.front().descriptor == candidate) {
        need.admitted.push_back(0);
      }
    }
  }
  for (const auto& [needed, options] : order) {
    version.needs.insert(version.needs.begin(), std::move(needs.at(needed)));
  }
}

/// Once all versions that may be held are known.
void SelectionClosure::addRequired(SelectionHost& host, const std::u16string& name,
                                   Version& version) {
  std::vector<PeerRequirement> required;
  host.findRequirements(version.descriptor, required);
  std::vector<Metamodel> candidates;
  for (const PeerRequirement& requirement : required) {
    const auto known = names_.find(requirement.name);
    if (known == names_.end()) continue;
    if (known->first == name) throw NotClosed();
    candidates.clear();
    host.findMetamodels(requirement.name, requirement.range, candidates);
    Version::Need& need = version.required.emplace_back(Version::Need{&known->first, {}});
    for (std::size_t place = 0; place < known->second.size(); ++place) {
      const Metamodel& held = known->second[place].descriptor;
      if (std::find(candidates.begin(), candidates.end(), held) != candidates.end()) {
        need.admitted.push_back(place);
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

void SelectionClosure::requireCertainNames() const {
  std::set<const std::u16string*> certain(selected_.begin(), selected_.end());
  std::vector<const std::u16string*> open(selected_);
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
      if (isNeededByAll && certain.insert(need.name).second) open.push_back(need.name);
    }
  }
  if (certain.size() != names_.size()) throw NotClosed();
}

std::optional<std::map<std::u16string, const Metamodel*>> SelectionClosure::firstBaseline() const {
  SatSolver solver;
  std::map<std::u16string, std::vector<Literal>> held;
  for (const auto& [name, versions] : names_) {
    auto& literals = held[name];
    for (std::size_t i = 0; i < versions.size(); ++i) literals.push_back(solver.newVariable());
    solver.addExactlyOne(literals);
  }
  const auto demand = [&](Literal version, const Version::Need& need) {
    std::vector<Literal> clause{-version};
    for (const std::size_t place : need.admitted) clause.push_back(held[*need.name][place]);
    solver.addClause(clause);
  };
  for (const auto& [name, versions] : names_) {
    for (std::size_t i = 0; i < versions.size(); ++i) {
      for (const Version::Need& need : versions[i].needs) demand(held[name][i], need);
      for (const Version::Need& need : versions[i].required) demand(held[name][i], need);
    }
  }
  std::vector<Literal> decided;
  if (!solver.solve(decided)) return std::nullopt;
  std::map<std::u16string, const Metamodel*> baseline;
  for (const std::u16string* name : selected_)
    baseline.emplace(*name, &names_.at(*name)[0].descriptor);
  visitInOrder([&](const std::u16string& name, const std::vector<std::size_t>& places) {
    for (const std::size_t place : places) {
      decided.push_back(held[name][place]);
      if (solver.solve(decided)) {
        baseline.emplace(name, &names_.at(name)[place].descriptor);
        return place;
      }
      decided.pop_back();
    }
    throw NotClosed();  // there is always one
  });
  return baseline;
}

}  // namespace tarn::evolution::pathfinder
