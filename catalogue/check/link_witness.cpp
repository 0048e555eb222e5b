// Models of former answers, as satisfiability solvers keep them: a set that holds a candidate for
// each dependency of a version shows that the version can be linked. Asked are the sets of the
// middle, the last and the first candidate of each range, which meet most others.
//
// A version may take the place of another of its name where names are layered: sorted
// topologically (Kahn's algorithm), nothing that it needs can need the name itself. Every set keeps
// for each member one candidate of each of its dependencies. See docs/catalogue.md.

#include "catalogue/check/link_witness.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::catalogue {

namespace {

/// Versions in all sets together, beyond which no further set is remembered.
constexpr std::size_t mostHeld = 2'000'000;

}  // namespace

LinkWitnesses::LinkWitnesses(const DraftIndex& index)
    : index_(index), isLayered_(index.names().size()), setOf_(index.slots().size(), nothing) {
  findLayered();
}

/// Takes names away as long as there are some that need only names taken away before.
void LinkWitnesses::findLayered() {
  std::vector<std::pair<NameNumber, NameNumber>> needs;  // needed, needing
  for (Slot slot = 0; slot < index_.slots().size(); ++slot) {
    for (const ResolvedDependency& dependency : index_.dependenciesOf(slot)) {
      needs.emplace_back(dependency.name, index_.slots().at(slot).name);
    }
  }
  std::sort(needs.begin(), needs.end());
  needs.erase(std::unique(needs.begin(), needs.end()), needs.end());
  std::vector<std::size_t> missing(isLayered_.size());
  for (const auto& [needed, needing] : needs) ++missing[needing];
  std::vector<NameNumber> layered;
  for (NameNumber name = 0; name < missing.size(); ++name) {
    if (missing[name] == 0) layered.push_back(name);
  }
  for (std::size_t next = 0; next < layered.size(); ++next) {
    const NameNumber name = layered[next];
    isLayered_[name] = true;
    auto need = std::lower_bound(needs.begin(), needs.end(), std::pair{name, NameNumber{0}});
    for (; need != needs.end() && need->first == name; ++need) {
      if (--missing[need->second] == 0) layered.push_back(need->second);
    }
  }
}

bool LinkWitnesses::cover(Slot slot) {
  for (const ResolvedDependency& dependency : index_.dependenciesOf(slot)) {
    const SlotInterval candidates = dependency.candidates;
    if (candidates.empty()) continue;
    const Slot middle = candidates.begin + (candidates.end - candidates.begin) / 2;
    for (const Slot candidate : {middle, candidates.end - 1, candidates.begin}) {
      const std::uint32_t number = setOf(candidate);
      if (number == nothing || !covers(sets_[number], slot)) continue;
      if (sets_[number].try_emplace(index_.slots().at(slot).name, slot).second) ++held_;
      assign(slot, number);
      return true;
    }
  }
  return false;
}

void LinkWitnesses::add(const std::vector<Slot>& versions) {
  if (held_ + versions.size() > mostHeld) return;
  const auto number = static_cast<std::uint32_t>(sets_.size());
  Set& set = sets_.emplace_back();
  users_.push_back(0);
  for (const Slot slot : versions) set.emplace(index_.slots().at(slot).name, slot);
  held_ += set.size();
  for (const Slot slot : versions) assign(slot, number);
}

/// The set to ask for a version that is known to stand with all that it needs.
std::uint32_t LinkWitnesses::setOf(Slot slot) {
  const bool needsNothing = index_.dependenciesOf(slot).empty();
  if (setOf_[slot] == nothing && needsNothing) add({slot});
  return setOf_[slot];
}

bool LinkWitnesses::covers(const Set& set, Slot slot) const {
  const auto own = set.find(index_.slots().at(slot).name);
  const bool isFree = own == set.end() || own->second == slot;
  if (!isFree && !isLayered_[index_.slots().at(slot).name]) return false;
  const auto dependencies = index_.dependenciesOf(slot);
  return std::all_of(dependencies.begin(), dependencies.end(), [&](const auto& dependency) {
    if (!dependency.decides()) return true;
    const auto held = set.find(dependency.name);
    return held != set.end() && dependency.admits(held->second);
  });
}

/// Forgets the set that the version had before when no other has it.
void LinkWitnesses::assign(Slot slot, std::uint32_t set) {
  const std::uint32_t before = std::exchange(setOf_[slot], set);
  ++users_[set];
  if (before == nothing || --users_[before] > 0) return;
  held_ -= sets_[before].size();
  sets_[before] = Set();
}

}  // namespace tarn::evolution::catalogue
