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
#include <utility>

#include "pathfinder/learning/own_names.hpp"
#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/limits/search_watch.hpp"

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
  for (const auto& [text, version] : selection) {
    auto descriptor = host.getMetamodel(text, version);
    if (!descriptor) reportUnknownVersion(text, version);
    if (descriptor->name != text) throw NotForDependencies();
    Name& name = nameOf(text);
    name.isSelected = name.isCertain = true;
    addVersion(name, *std::move(descriptor));
  }
  for (auto& [text, name] : names_) selected_.push_back(&name);
  bringIn(host);
  refuseOwnNames();
  for (auto& [text, name] : names_) {
    for (Version& version : name.versions) addRefusals(host, name, version);
  }
  findCertainNames();
}

SelectionClosure::Name& SelectionClosure::nameOf(const std::u16string& text) {
  const auto [known, isNew] = names_.try_emplace(text);
  if (isNew) {
    known->second.text = &known->first;
    known->second.number = static_cast<std::uint32_t>(names_.size() - 1);
  }
  return known->second;
}

void SelectionClosure::bringIn(SelectionHost& host) {
  // Versions are added on the way.
  for (std::size_t i = 0; i < versions_.size(); ++i) {  // NOLINT(modernize-loop-convert)
    checkpoint();
    addNeeds(host, *versions_[i]);
  }
}

void SelectionClosure::addNeeds(SelectionHost& host, Version& version) {
  std::vector<Metamodel> candidates;
  for (const Dependency* dependency : dependenciesInLinkingOrder(version.descriptor)) {
    candidates.clear();
    host.findMetamodels(dependency->name, dependency->range, candidates);
    Name& name = nameOf(dependency->name);
    Version::Need& need = version.needs.emplace_back(Version::Need{&name});
    for (Metamodel& candidate : candidates) {
      if (candidate.name != dependency->name) throw NotForDependencies();
      if (!name.isSelected) {
        need.admitted.push_back(addVersion(name, std::move(candidate)));
      } else if (name.versions.front().descriptor == candidate) {
        need.admitted.push_back(&name.versions.front());
      }
    }
  }
}

void SelectionClosure::refuseOwnNames() const {
  std::vector<NeedingVersion> all;
  all.reserve(versions_.size());
  for (const Version* version : versions_) {
    NeedingVersion& added = all.emplace_back(NeedingVersion{version->name->number});
    for (const auto& [name, admitted] : version->needs) {
      auto& need = added.needs.emplace_back(NeedingVersion::Need{name->number});
      for (const Version* one : admitted) need.admitted.push_back(one->number);
    }
  }
  if (mayBringInOwnName(all, names_.size())) throw NotForDependencies();
}

/// Once all versions that may be held are known.
void SelectionClosure::addRefusals(SelectionHost& host, const Name& name, Version& version) {
  std::vector<PeerRequirement> required;
  host.findRequirements(version.descriptor, required);
  std::vector<Metamodel> candidates;
  for (const PeerRequirement& requirement : required) {
    const auto known = names_.find(requirement.name);
    if (known == names_.end()) continue;
    const Name& peer = known->second;
    if (&peer == &name) throw NotForDependencies();
    candidates.clear();
    host.findMetamodels(requirement.name, requirement.range, candidates);
    for (const Version& other : peer.versions) {
      if (std::find(candidates.begin(), candidates.end(), other.descriptor) == candidates.end()) {
        version.refused.push_back(&other);
      }
    }
  }
}

const SelectionClosure::Version* SelectionClosure::addVersion(Name& name, Metamodel&& descriptor) {
  const auto known =
      std::find_if(name.versions.begin(), name.versions.end(),
                   [&](const Version& version) { return version.descriptor == descriptor; });
  if (known != name.versions.end()) return &*known;
  const auto number = static_cast<std::uint32_t>(versions_.size());
  return versions_.emplace_back(
      &name.versions.emplace_back(Version{std::move(descriptor), &name, number}));
}

void SelectionClosure::findCertainNames() {
  std::vector<const Name*> open(selected_.begin(), selected_.end());
  while (!open.empty()) {
    const std::deque<Version>& versions = open.back()->versions;
    open.pop_back();
    if (versions.empty()) continue;
    for (const Version::Need& need : versions.front().needs) {
      const bool isNeededByAll =
          std::all_of(versions.begin(), versions.end(), [&](const Version& version) {
            return std::any_of(version.needs.begin(), version.needs.end(),
                               [&](const auto& other) { return other.name == need.name; });
          });
      if (!isNeededByAll || need.name->isCertain) continue;
      names_.at(*need.name->text).isCertain = true;
      open.push_back(need.name);
    }
  }
}

/// Adds what makes a baseline of the versions that are held; returns a literal for each version.
std::vector<Literal> SelectionClosure::addBaseline(SatSolver& solver) const {
  std::vector<Literal> held;
  for (std::size_t i = 0; i < versions_.size(); ++i) held.push_back(solver.newVariable());
  for (const auto& [text, name] : names_) {
    std::vector<Literal> own;
    for (const Version& version : name.versions) own.push_back(held[version.number]);
    if (name.isSelected) solver.addClause({own.front()});
    solver.addAtMostOne(std::move(own));
  }
  addNeeds(solver, held);
  addNeeding(solver, held);
  return held;
}

/// What a version needs is beside it, and nothing that it refuses.
void SelectionClosure::addNeeds(SatSolver& solver, const std::vector<Literal>& held) const {
  for (const Version* version : versions_) {
    const Literal isHeld = held[version->number];
    for (const Version::Need& need : version->needs) {
      std::vector<Literal> clause{-isHeld};
      for (const Version* admitted : need.admitted) clause.push_back(held[admitted->number]);
      solver.addClause(clause);
    }
    for (const Version* refused : version->refused) {
      solver.addClause({-isHeld, -held[refused->number]});
    }
  }
}

/// Beside a version that is not selected is one that needs it.
void SelectionClosure::addNeeding(SatSolver& solver, const std::vector<Literal>& held) const {
  std::vector<std::vector<Literal>> needing(versions_.size());
  for (const Version* version : versions_) {
    for (const Version::Need& need : version->needs) {
      for (const Version* admitted : need.admitted) {
        needing[admitted->number].push_back(held[version->number]);
      }
    }
  }
  for (const Version* version : versions_) {
    if (version->name->isSelected) continue;
    std::vector<Literal>& clause = needing[version->number];
    clause.push_back(-held[version->number]);
    solver.addClause(clause);
  }
}

std::optional<SelectionClosure::Baseline> SelectionClosure::firstBaseline() const {
  SatSolver solver;
  const std::vector<Literal> held = addBaseline(solver);
  std::vector<Literal> decided;
  if (!solver.solve(decided)) return std::nullopt;
  Baseline baseline;
  for (const Name* name : selected_) {
    baseline.emplace(*name->text, &name->versions.front().descriptor);
  }
  for (const Name* name : selected_) {
    chooseFor(name->versions.front(), solver, held, decided, baseline);
  }
  return baseline;
}

/// Decides on what a version needs and what that needs, each name's choice deciding more on the
/// order of baselines than the next one's.
void SelectionClosure::chooseFor(const Version& version, SatSolver& solver,
                                 const std::vector<Literal>& held, std::vector<Literal>& decided,
                                 Baseline& baseline) const {
  for (const Version::Need& need : version.needs) {
    if (baseline.contains(*need.name->text)) continue;
    const auto canBeHeld = [&](const Version* candidate) {
      decided.push_back(held[candidate->number]);
      if (solver.solve(decided)) return true;
      decided.pop_back();
      return false;
    };
    const auto chosen = std::find_if(need.admitted.begin(), need.admitted.end(), canBeHeld);
    if (chosen == need.admitted.end()) throw NotForDependencies();  // there is always one
    baseline.emplace(*need.name->text, &(*chosen)->descriptor);
    chooseFor(**chosen, solver, held, decided, baseline);
  }
}

Direction directionBetween(SelectionHost& host, const SelectionClosure::Baseline& source,
                           const SelectionClosure::Baseline& target) {
  Direction result = Direction::Unknown;
  for (const auto& [name, after] : target) {
    const auto before = source.find(name);
    if (before == source.end()) continue;
    const Direction direction = host.directionBetween(*before->second, *after);
    if (direction == Direction::Equal || direction == Direction::Unknown) continue;
    if (areOpposite(result, direction)) return Direction::Unknown;
    result = direction;
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
