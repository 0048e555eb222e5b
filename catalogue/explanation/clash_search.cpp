// A smallest set of parties that cannot stand together: two, if any two cannot; otherwise by
// deletion, leaving out party by party as long as the others still cannot. That suffices, for more
// parties disagree as well. Then names the metamodel on which they disagree, preferring the one
// that the shortest chains of dependencies lead to (breadth-first search). See docs/catalogue.md.

#include "catalogue/explanation/clash_search.hpp"

#include <algorithm>
#include <deque>
#include <limits>
#include <map>
#include <set>

#include "pathfinder/linked_metamodel.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::LinkedMetamodel;
using pathfinder::Metamodel;

namespace {

using Linked = std::shared_ptr<LinkedMetamodel>;

std::optional<std::vector<Candidates>> findTwoParties(const std::vector<Candidates>& candidates) {
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    for (std::size_t j = i + 1; j < candidates.size(); ++j) {
      std::vector<Candidates> two{candidates[i], candidates[j]};
      if (!canStandTogether(two)) return two;
    }
  }
  return std::nullopt;
}

std::vector<Candidates> findParties(const std::vector<Candidates>& candidates) {
  if (auto two = findTwoParties(candidates)) return *std::move(two);
  std::vector<Candidates> parties = candidates;
  for (std::size_t i = 0; i < parties.size();) {
    std::vector<Candidates> others = parties;
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
    if (canStandTogether(others)) {
      ++i;
    } else {
      parties = std::move(others);
    }
  }
  return parties;
}

/// What a candidate holds under a name, itself included; null when nothing.
const LinkedMetamodel* heldBy(const Linked& candidate, const std::u16string& name) {
  if (candidate->name == name) return candidate.get();
  const auto link = candidate->linkedMetamodels.find(name);
  return link == candidate->linkedMetamodels.end() ? nullptr : link->second.get();
}

const Dependency* dependencyOn(const Metamodel& metamodel, const std::u16string& name) {
  const auto& dependencies = metamodel.dependencies;
  const auto found =
      std::find_if(dependencies.begin(), dependencies.end(),
                   [&](const Dependency& dependency) { return dependency.name == name; });
  return found == dependencies.end() ? nullptr : &*found;
}

/// The shortest chain of dependencies from a candidate to what requires `contested`.
Requirement requirementOf(const Linked& candidate, const std::u16string& contested) {
  if (candidate->name == contested)
    return {{{contested, candidate->version}}, contested, std::nullopt};
  std::map<const LinkedMetamodel*, const LinkedMetamodel*> parents{{candidate.get(), nullptr}};
  std::deque<const LinkedMetamodel*> waiting{candidate.get()};
  for (; !waiting.empty(); waiting.pop_front()) {
    const LinkedMetamodel* current = waiting.front();
    if (const Dependency* dependency = dependencyOn(*current, contested)) {
      Requirement result{{}, contested, dependency->range};
      for (; current != nullptr; current = parents.at(current)) {
        result.chain.insert(result.chain.begin(), {current->name, current->version});
      }
      return result;
    }
    for (const Dependency& dependency : current->dependencies) {
      const LinkedMetamodel* next = heldBy(candidate, dependency.name);
      if (next != nullptr && parents.emplace(next, current).second) waiting.push_back(next);
    }
  }
  return {{{candidate->name, candidate->version}}, contested, std::nullopt};
}

bool isSameRequirement(const Requirement& left, const Requirement& right) {
  return left.chain.back() == right.chain.back() && left.range == right.range;
}

/// What a party asks of `contested`: of several chains that end alike, the shortest.
std::vector<Requirement> requirementsOf(const Candidates& party, const std::u16string& contested) {
  std::vector<Requirement> result;
  for (const Linked& candidate : party.linked) {
    if (heldBy(candidate, contested) == nullptr) continue;
    Requirement requirement = requirementOf(candidate, contested);
    const auto alike = std::find_if(result.begin(), result.end(), [&](const Requirement& known) {
      return isSameRequirement(known, requirement);
    });
    if (alike == result.end()) {
      result.push_back(std::move(requirement));
    } else if (requirement.chain.size() < alike->chain.size()) {
      *alike = std::move(requirement);
    }
  }
  return result;
}

std::set<std::u16string> namesHeld(const std::vector<Candidates>& parties) {
  std::set<std::u16string> names;
  for (const Candidates& party : parties) {
    for (const Linked& candidate : party.linked) {
      names.insert(candidate->name);
      for (const auto& [name, linked] : candidate->linkedMetamodels) names.insert(name);
    }
  }
  return names;
}

/// Whether the parties, each of which always holds the name, have nothing in common under it.
template <class IsSame>
bool disagreeOn(const std::vector<Candidates>& parties, const std::u16string& name,
                const IsSame& isSame) {
  std::vector<const LinkedMetamodel*> common;
  for (const Candidates& party : parties) {
    std::vector<const LinkedMetamodel*> held;
    for (const Linked& candidate : party.linked) {
      held.push_back(heldBy(candidate, name));
      if (held.back() == nullptr) return false;
    }
    if (&party == &parties.front()) {
      common = held;
      continue;
    }
    std::erase_if(common, [&](const LinkedMetamodel* linked) {
      return std::none_of(held.begin(), held.end(),
                          [&](const LinkedMetamodel* other) { return isSame(*linked, *other); });
    });
  }
  return common.empty();
}

bool isSameVersion(const LinkedMetamodel& left, const LinkedMetamodel& right) {
  return left.version == right.version;
}

bool isSameVariant(const LinkedMetamodel& left, const LinkedMetamodel& right) {
  return &left == &right;
}

/// How long the chains to a contested name are: the shorter, the plainer the explanation.
std::size_t remoteness(const std::vector<Candidates>& parties, const std::u16string& contested) {
  std::size_t result = 0;
  for (const Candidates& party : parties) {
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (const Requirement& requirement : requirementsOf(party, contested)) {
      shortest = std::min(shortest, requirement.chain.size());
    }
    result += shortest;
  }
  return result;
}

/// The name on which the parties disagree, by version if there is such a name; else empty.
std::u16string findContested(const std::vector<Candidates>& parties) {
  for (const auto isSame : {isSameVersion, isSameVariant}) {
    std::set<std::pair<std::size_t, std::u16string>> contested;
    for (const std::u16string& name : namesHeld(parties)) {
      if (disagreeOn(parties, name, isSame)) contested.emplace(remoteness(parties, name), name);
    }
    if (!contested.empty()) return contested.begin()->second;
  }
  return {};
}

/// The names that more than one party may hold.
std::vector<std::u16string> sharedNames(const std::vector<Candidates>& parties) {
  std::map<std::u16string, std::size_t> holders;
  for (const Candidates& party : parties) {
    for (const std::u16string& name : namesHeld({party})) ++holders[name];
  }
  std::vector<std::u16string> result;
  for (const auto& [name, count] : holders) {
    if (count > 1) result.push_back(name);
  }
  return result;
}

}  // namespace

std::optional<Clash> findClash(const std::vector<Candidates>& candidates) {
  if (canStandTogether(candidates)) return std::nullopt;
  std::vector<Candidates> parties = findParties(candidates);
  std::sort(parties.begin(), parties.end(),
            [](const auto& left, const auto& right) { return left.name < right.name; });
  Clash clash;
  clash.contested = findContested(parties);
  for (const Candidates& party : parties) {
    clash.parties.push_back(party.name);
    const std::vector<std::u16string> contested =
        clash.contested.empty() ? sharedNames(parties) : std::vector{clash.contested};
    for (const std::u16string& name : contested) {
      for (Requirement& requirement : requirementsOf(party, name)) {
        clash.requirements.push_back(std::move(requirement));
      }
    }
  }
  return clash;
}

}  // namespace tarn::evolution::catalogue
