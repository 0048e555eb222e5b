// Dominance among plans, by putting a hop off.
//
// Take a plan in which a name stays at v in some step, and the last hop of that name before it, u
// to v. Taken in that step instead, it makes the later step heavier and the earlier one lighter, or
// removes it: of two plans of one total, the one that is heavier in the later step comes first. So
// the plan is not a best one, unless the change breaks it or makes the step dearer:
//
// - between the two steps the name is now at u, which then must stand beside all that the other
//   names hold meanwhile: versions that can stand beside v and from which hops or links lead to
//   what they hold after the step;
// - an ordinary hop adds 1 to a step that has no other ordinary hop;
// - a link brings a name in only in a step, and what it brings in may depend on v. That does not
//   touch a name that no linked metamodel has to do with that also has to do with a name that can
//   be absent: the names that link the one that enters are at the same versions in both plans, and
//   one of them hops in that very step. For other names nothing is put off;
// - what stands beside what is looked at for two versions at a time. Where an application links at
//   will, that does not tell what three say together, and nothing is put off; nor for what a
//   version links that links another one of its own name, for whether that can be held depends on
//   the step;
// - the first step from a source that is not regular links everything anew, which may be what it is
//   for. If a single hop that could wait is all that it has, it must not go: such first steps are
//   planned one by one (see `IdleStep`).
//
// By the same token a name that has nothing to do with any other, and of which no target wants
// anything, does not move at all, unless no step leads to what a source holds of it.
//
// Without this, names that hardly depend on one another multiply the plans to be looked at: every
// distribution of their hops among the steps is one. docs/search.md has the proof.

#include "pathfinder/planning/dominance.hpp"

#include <algorithm>
#include <functional>
#include <utility>

#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

bool mayBeAbsent(const SearchSpace& space, NameIndex name) {
  return space.names[name].absent != SearchSpace::none;
}

}  // namespace

Dominance::Dominance(const SearchSpace& space, const Compatibility& compatibility,
                     const IncomingHops& incoming, VersionIndex start)
    : space_(space),
      compatibility_(compatibility),
      incoming_(incoming),
      isStart_(space.versions.size()),
      cannotStay_(space.names.size()),
      cannotWait_(space.names.size()) {
  for (const SearchSpace::Source& source : space.sources) {
    for (const VersionIndex version : source.selection) {
      isStart_[version] = true;
      if (!space.versions[version].canBeCombined) cannotStay_[space.versions[version].name] = true;
    }
  }
  if (start != SearchSpace::none) isStart_[start] = true;
  findNamesThatCannotWait();
  for (NameIndex name = 0; name < space.names.size(); ++name) findWaysInto(name);
}

void Dominance::findNamesThatCannotWait() {
  for (const SearchSpace::Variant& variant : space_.variants) {
    if (variant.linksOwnName) holdBack(variant);
  }
  if (space_.anyLinksAtWill) findNamesLinkedAtWill();
  const bool anyMayBeAbsent =
      std::any_of(space_.names.begin(), space_.names.end(),
                  [](const SearchSpace::Name& name) { return name.absent != SearchSpace::none; });
  if (!anyMayBeAbsent) return;
  entersOnlyByHops_ = findEntersOnlyByHops();
  if (!entersOnlyByHops_) {
    cannotWait_.assign(cannotWait_.size(), true);
    return;
  }
  for (NameIndex name = 0; name < cannotWait_.size(); ++name) {
    if (mayBeAbsent(space_, name)) cannotWait_[name] = true;
  }
  for (const SearchSpace::Variant& variant : space_.variants) {
    const bool mayBringIn = std::any_of(
        variant.closure.begin(), variant.closure.end(),
        [this](const SearchSpace::Link& link) { return mayBeAbsent(space_, link.name); });
    if (mayBringIn) holdBack(variant);
  }
}

/// Nothing that the variant links is put off.
void Dominance::holdBack(const SearchSpace::Variant& variant) {
  for (const SearchSpace::Link& link : variant.closure) cannotWait_[link.name] = true;
}

/// Names to which it may matter what three versions say together.
void Dominance::findNamesLinkedAtWill() {
  for (const SearchSpace::Variant& variant : space_.variants) {
    const bool isAtWill = std::any_of(
        variant.closure.begin(), variant.closure.end(), [this](const SearchSpace::Link& link) {
          const VersionIndex version = space_.variants[link.variant].version;
          return version != SearchSpace::none && space_.versions[version].linksAtWill;
        });
    if (isAtWill) holdBack(variant);
  }
}

/// Whether a name can only enter in a step in which a name hops that has to do with it. So it is
/// where links follow from dependencies; a host may have added others.
bool Dominance::findEntersOnlyByHops() const {
  for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
    if (mayEnterBySwitching(version)) return false;
  }
  return true;
}

/// Whether two variants of a version that can be held beside the same versions of all names that
/// both link differ in which names they may bring in.
bool Dominance::mayEnterBySwitching(VersionIndex version) const {
  constexpr std::size_t mostCompared = 64;  // more that differ are taken to do so
  std::vector<const SearchSpace::Variant*> variants;
  std::vector<std::vector<NameIndex>> broughtIn;
  for (const SearchSpace::Variant& variant : space_.variantsOf(version)) {
    if (!variant.canBeCombined) continue;
    variants.push_back(&variant);
    std::vector<NameIndex>& names = broughtIn.emplace_back();
    for (const SearchSpace::Link& link : variant.closure) {
      if (mayBeAbsent(space_, link.name)) names.push_back(link.name);
    }
  }
  if (std::adjacent_find(broughtIn.begin(), broughtIn.end(), std::not_equal_to<>()) ==
      broughtIn.end()) {
    return false;
  }
  if (variants.size() > mostCompared) return true;
  for (std::size_t i = 1; i < variants.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (broughtIn[i] != broughtIn[j] && agreeInVersions(*variants[i], *variants[j])) return true;
    }
  }
  return false;
}

/// Whether the names that both link have the same versions in both.
bool Dominance::agreeInVersions(const SearchSpace::Variant& left,
                                const SearchSpace::Variant& right) const {
  auto other = right.closure.begin();
  for (const SearchSpace::Link& link : left.closure) {
    while (other != right.closure.end() && other->name < link.name) ++other;
    if (other == right.closure.end() || other->name != link.name) continue;
    if (space_.variants[link.variant].version != space_.variants[other->variant].version) {
      return false;
    }
  }
  return true;
}

BitRow Dominance::waysInto(VersionIndex version) {
  return {&ways_[waysStart_[version]], space_.names[space_.versions[version].name].words()};
}

ConstBitRow Dominance::waysInto(VersionIndex version) const {
  return {&ways_[waysStart_[version]], space_.names[space_.versions[version].name].words()};
}

void Dominance::findWaysInto(NameIndex index) {
  const SearchSpace::Name& name = space_.names[index];
  if (compatibility_.neighbours(index).empty()) {
    waysStart_.resize(name.end, ways_.size());  // nobody asks
    return;
  }
  for (VersionIndex version = name.first; version < name.end; ++version) {
    waysStart_.push_back(ways_.size());
    ways_.resize(ways_.size() + name.words());
    waysInto(version).insert(version - name.first);
  }
  for (bool changed = true; changed;) {
    changed = false;
    for (VersionIndex version = name.first; version < name.end; ++version) {
      for (const IncomingHop& hop : incoming_.into(version)) {
        changed |= waysInto(version).unite(std::as_const(*this).waysInto(hop.before));
      }
      if (name.absent != SearchSpace::none && space_.versions[version].isEntry) {
        changed |= waysInto(version).unite(std::as_const(*this).waysInto(name.absent));
      }
    }
  }
}

Dominance::Stay Dominance::stayAt(VersionIndex version, SelectionView after) const {
  if (isStart_[version] || cannotWait_[space_.versions[version].name]) return Stay::Always;
  Stay stay = Stay::Never;
  for (const IncomingHop& hop : incoming_.into(version)) {
    if (!canWait(hop, after)) return Stay::Always;
    if (hop.weight == hopWeight(false)) stay = Stay::WithoutOrdinaryHop;
  }
  return stay;
}

/// Whether the version that the hop leaves can stand beside all that the version which it leads to
/// can, as far as it still matters before `after`.
bool Dominance::canWait(const IncomingHop& hop, SelectionView after) const {
  if (!space_.versions[hop.before].canBeCombined) return false;
  const auto& neighbours = compatibility_.neighbours(space_.versions[hop.target].name);
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    const ConstBitRow besideTarget = compatibility_.row(hop.target, i);
    const ConstBitRow besideBefore = compatibility_.row(hop.before, i);
    if (besideTarget.meetsOutside(waysInto(after[neighbours[i]]), besideBefore)) return false;
  }
  return true;
}

}  // namespace tarn::evolution::pathfinder
