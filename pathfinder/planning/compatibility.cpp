// Pairwise consistency, as in constraint networks: two versions are compatible when some variant of
// the one agrees with some variant of the other on all names that both hold. One row of bits for
// each version and neighbouring name.
//
// Variants are compared by their projections onto the names that both versions hold, each different
// projection once. Pairs of names that share nothing, or whose compatibility follows from a third
// name that both link, get no row. What a requirement excludes is struck from the rows at last:
// what follows from a third name is still true of what is left. docs/search.md tells why planning
// by pairs alone relaxes the question.

#include "pathfinder/planning/compatibility.hpp"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

using Closure = std::span<const SearchSpace::Link>;
using Projection = std::vector<VariantIndex>;

/// The variant that a closure holds under a name; `none` when it holds none.
VariantIndex heldUnder(const Closure& closure, NameIndex name) {
  const auto found = std::lower_bound(
      closure.begin(), closure.end(), name,
      [](const SearchSpace::Link& link, NameIndex wanted) { return link.name < wanted; });
  return found != closure.end() && found->name == name ? found->variant : SearchSpace::none;
}

bool agree(const Projection& left, const Projection& right) {
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] != right[i] && left[i] != SearchSpace::none && right[i] != SearchSpace::none) {
      return false;
    }
  }
  return true;
}

bool anyAgree(const std::vector<Projection>& left, const std::vector<Projection>& right) {
  return std::any_of(left.begin(), left.end(), [&](const Projection& one) {
    return std::any_of(right.begin(), right.end(),
                       [&](const Projection& other) { return agree(one, other); });
  });
}

/// The different projections of a version's closures that hold nothing under `without`.
std::vector<Projection> project(const SearchSpace& space, VersionIndex index, NameIndex without,
                                const std::vector<NameIndex>& shared) {
  std::vector<Projection> result;
  for (const SearchSpace::Variant& variant : space.variantsOf(index)) {
    if (!variant.canBeCombined) continue;
    if (heldUnder(variant.closure, without) != SearchSpace::none) continue;
    Projection projection;
    projection.reserve(shared.size());
    for (const NameIndex name : shared) projection.push_back(heldUnder(variant.closure, name));
    result.push_back(std::move(projection));
  }
  std::sort(result.begin(), result.end());
  result.erase(std::unique(result.begin(), result.end()), result.end());
  return result;
}

}  // namespace

Compatibility::Compatibility(const SearchSpace& space) : space_(space) {
  surveyClosures();
  findNeighbours();
  addNeighbours(space_.requirements);
  layOutRows();
  for (NameIndex name = 0; name < space_.names.size(); ++name) {
    for (const NameIndex neighbour : neighbours_[name]) {
      if (name < neighbour) fillRows(name, neighbour);
    }
  }
  for (const Requirement& requirement : space_.requirements) require(requirement);
}

Compatibility::Compatibility(const SearchSpace& space, const std::vector<Requirement>& requirements)
    : space_(space), neighbours_(space.names.size()) {
  addNeighbours(requirements);
  layOutRows();
  std::fill(rows_.begin(), rows_.end(), ~BitWord{0});
  for (const Requirement& requirement : requirements) require(requirement);
}

void Compatibility::addNeighbours(const std::vector<Requirement>& requirements) {
  if (requirements.empty()) return;
  for (const Requirement& requirement : requirements) {
    const NameIndex name = space_.versions[requirement.version].name;
    neighbours_[name].push_back(requirement.needed);
    neighbours_[requirement.needed].push_back(name);
  }
  for (auto& neighbours : neighbours_) {
    std::sort(neighbours.begin(), neighbours.end());
    neighbours.erase(std::unique(neighbours.begin(), neighbours.end()), neighbours.end());
  }
}

/// Removes what the requirement excludes, on both sides.
void Compatibility::require(const Requirement& requirement) {
  const SearchSpace::Name& needed = space_.names[requirement.needed];
  std::vector<bool> isAdmitted(needed.end - needed.first);
  for (const VersionIndex version : requirement.admitted) isAdmitted[version - needed.first] = true;
  BitRow row = mutableRow(requirement.version, requirement.needed);
  for (VersionIndex other = needed.first; other < needed.end; ++other) {
    if (isAdmitted[other - needed.first]) continue;
    row.erase(other - needed.first);
    mutableRow(other, space_.versions[requirement.version].name)
        .erase(space_.rankOf(requirement.version));
  }
}

/// Which names link others or are linked.
std::vector<bool> Compatibility::linkedNames() const {
  std::vector<bool> isLinked(space_.names.size());
  for (const SearchSpace::Variant& variant : space_.variants) {
    if (variant.closure.size() <= 1) continue;
    for (const SearchSpace::Link& link : variant.closure) isLinked[link.name] = true;
  }
  return isLinked;
}

void Compatibility::surveyClosures() {
  holdings_.resize(space_.names.size());
  std::vector<std::size_t> closuresHolding(space_.names.size());
  const std::vector<bool> isLinked = linkedNames();
  for (NameIndex name = 0; name < space_.names.size(); ++name) {
    if (!isLinked[name]) continue;
    Holdings& holdings = holdings_[name];
    std::size_t closures = 0;
    for (VersionIndex version = space_.names[name].first; version < space_.names[name].end;
         ++version) {
      const auto variants = space_.variantsOf(version);
      closures += variants.size();
      holdings.isSingle &= variants.size() <= 1;
      for (const SearchSpace::Variant& variant : variants) {
        for (const SearchSpace::Link& link : variant.closure) {
          if (closuresHolding[link.name]++ == 0) holdings.any.push_back(link.name);
        }
      }
    }
    if (closures == 0) holdings.any.push_back(name);
    std::sort(holdings.any.begin(), holdings.any.end());
    for (const NameIndex held : holdings.any) {
      if (closuresHolding[held] == closures) holdings.always.push_back(held);
      closuresHolding[held] = 0;
    }
  }
}

void Compatibility::findNeighbours() {
  const std::size_t count = space_.names.size();
  std::vector<std::vector<NameIndex>> holders(count);
  for (NameIndex name = 0; name < count; ++name) {
    for (const NameIndex held : holdings_[name].any) holders[held].push_back(name);
  }
  neighbours_.resize(count);
  std::vector<NameIndex> lastSeenBy(count, SearchSpace::none);
  for (NameIndex name = 0; name < count; ++name) {
    std::size_t unseen = count - name - 1;
    for (const NameIndex held : holdings_[name].any) {
      if (unseen == 0) break;
      const auto& all = holders[held];
      for (auto later = std::upper_bound(all.begin(), all.end(), name); later != all.end();
           ++later) {
        const NameIndex other = *later;
        if (std::exchange(lastSeenBy[other], name) == name) continue;
        --unseen;
        if (followsFromThird(name, other)) continue;
        neighbours_[name].push_back(other);
        neighbours_[other].push_back(name);
      }
    }
  }
  for (auto& neighbours : neighbours_) std::sort(neighbours.begin(), neighbours.end());
}

bool Compatibility::holds(NameIndex holder, NameIndex held) const {
  const auto& any = holdings_[holder].any;
  return std::binary_search(any.begin(), any.end(), held);
}

bool Compatibility::alwaysHolds(NameIndex holder, NameIndex held) const {
  const auto& always = holdings_[holder].always;
  return std::binary_search(always.begin(), always.end(), held);
}

std::vector<NameIndex> Compatibility::sharedNames(NameIndex left, NameIndex right) const {
  std::vector<NameIndex> shared;
  std::set_intersection(holdings_[left].any.begin(), holdings_[left].any.end(),
                        holdings_[right].any.begin(), holdings_[right].any.end(),
                        std::back_inserter(shared));
  return shared;
}

/// The name that a name links, when there is just one.
NameIndex Compatibility::linkedBy(NameIndex name) const {
  const auto& any = holdings_[name].any;
  return any.front() == name ? any.back() : any.front();
}

/// Whether versions of the two names can stand together whenever each can stand beside the same
/// version of a third name.
bool Compatibility::followsFromThird(NameIndex left, NameIndex right) const {
  const bool leftHolds = holds(left, right);
  const bool rightHolds = holds(right, left);
  if (leftHolds || rightHolds) {
    const NameIndex holder = leftHolds ? left : right;
    const NameIndex held = leftHolds ? right : left;
    // Between the two: whatever holds the one holds the third, whatever holds the third holds the
    // other.
    const auto& always = holdings_[holder].always;
    return std::any_of(always.rbegin(), always.rend(), [&](NameIndex third) {
      return third != holder && third != held && holdings_[third].isSingle &&
             alwaysHolds(third, held);
    });
  }
  if (holdings_[left].any.size() == 2 && holdings_[right].any.size() == 2) {
    return holdings_[linkedBy(left)].isSingle;  // there is nothing else that they could share
  }
  const std::vector<NameIndex> shared = sharedNames(left, right);
  return std::any_of(shared.begin(), shared.end(),
                     [&](NameIndex third) { return followsFrom(third, left, right, shared); });
}

/// Below the two: all that they share comes with the third, of which each version has one closure
/// only.
bool Compatibility::followsFrom(NameIndex third, NameIndex left, NameIndex right,
                                const std::vector<NameIndex>& shared) const {
  if (!holdings_[third].isSingle) return false;
  if (shared.size() == 1) return true;
  const auto& any = holdings_[third].any;
  return alwaysHolds(left, third) && alwaysHolds(right, third) &&
         std::includes(any.begin(), any.end(), shared.begin(), shared.end());
}

void Compatibility::layOutRows() {
  rowOffset_.resize(space_.names.size());
  rowStart_.resize(space_.versions.size());
  std::size_t end = 0;
  for (NameIndex name = 0; name < space_.names.size(); ++name) {
    std::size_t size = 0;
    for (const NameIndex neighbour : neighbours_[name]) {
      rowOffset_[name].push_back(size);
      size += space_.names[neighbour].words();
    }
    for (VersionIndex version = space_.names[name].first; version < space_.names[name].end;
         ++version) {
      rowStart_[version] = end;
      end += size;
    }
  }
  rows_.resize(end);
}

BitRow Compatibility::mutableRow(VersionIndex version, NameIndex neighbour) {
  const NameIndex name = space_.versions[version].name;
  const auto& all = neighbours_[name];
  const auto slot = std::lower_bound(all.begin(), all.end(), neighbour) - all.begin();
  return {rows_.data() + rowStart_[version] + rowOffset_[name][static_cast<std::size_t>(slot)],
          space_.names[neighbour].words()};
}

void Compatibility::admit(VersionIndex left, VersionIndex right) {
  const auto set = [this](VersionIndex version, VersionIndex other) {
    mutableRow(version, space_.versions[other].name).insert(space_.rankOf(other));
  };
  set(left, right);
  set(right, left);
}

void Compatibility::fillRows(NameIndex name, NameIndex neighbour) {
  admitLinked(name, neighbour);
  admitLinked(neighbour, name);
  admitAgreeing(name, neighbour);
  admitUnknown(name, neighbour);
  admitUnknown(neighbour, name);
}

/// What is not known may stand beside anything.
void Compatibility::admitUnknown(NameIndex name, NameIndex neighbour) {
  const SearchSpace::Name& others = space_.names[neighbour];
  for (VersionIndex version = space_.names[name].first; version < space_.names[name].end;
       ++version) {
    if (!space_.versions[version].isUnknown) continue;
    for (VersionIndex other = others.first; other < others.end; ++other) admit(version, other);
  }
}

/// A version that links a variant of the other name agrees with it in all: its closure holds the
/// variant's.
void Compatibility::admitLinked(NameIndex linking, NameIndex linked) {
  for (VersionIndex version = space_.names[linking].first; version < space_.names[linking].end;
       ++version) {
    for (const SearchSpace::Variant& variant : space_.variantsOf(version)) {
      if (!variant.canBeCombined) continue;
      const VariantIndex held = heldUnder(variant.closure, linked);
      if (held == SearchSpace::none || space_.variants[held].version == SearchSpace::none) continue;
      admit(version, space_.variants[held].version);
    }
  }
}

/// Closures of which neither holds the other's name agree when they do on what both hold.
void Compatibility::admitAgreeing(NameIndex left, NameIndex right) {
  if (!anyWithout(left, right) || !anyWithout(right, left)) return;
  const std::vector<NameIndex> shared = sharedNames(left, right);
  const auto leftProjections = projectAll(left, right, shared);
  const auto rightProjections = projectAll(right, left, shared);
  for (std::size_t i = 0; i < leftProjections.size(); ++i) {
    for (std::size_t j = 0; j < rightProjections.size(); ++j) {
      if (anyAgree(leftProjections[i], rightProjections[j])) {
        admit(space_.names[left].first + static_cast<VersionIndex>(i),
              space_.names[right].first + static_cast<VersionIndex>(j));
      }
    }
  }
}

/// Whether some version of a name has a closure that does not hold `other`.
bool Compatibility::anyWithout(NameIndex name, NameIndex other) const {
  for (VersionIndex index = space_.names[name].first; index < space_.names[name].end; ++index) {
    if (space_.isAbsent(index)) return true;
    const auto variants = space_.variantsOf(index);
    const bool isWithout =
        std::any_of(variants.begin(), variants.end(), [&](const SearchSpace::Variant& variant) {
          return heldUnder(variant.closure, other) == SearchSpace::none;
        });
    if (isWithout) return true;
  }
  return false;
}

std::vector<std::vector<Compatibility::Projection>> Compatibility::projectAll(
    NameIndex name, NameIndex without, const std::vector<NameIndex>& shared) const {
  std::vector<std::vector<Projection>> result;
  for (VersionIndex version = space_.names[name].first; version < space_.names[name].end;
       ++version) {
    if (space_.isAbsent(version)) {
      result.push_back({Projection(shared.size(), SearchSpace::none)});
    } else {
      result.push_back(project(space_, version, without, shared));
    }
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
