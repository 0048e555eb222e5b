#include "catalogue/catalogue_index.hpp"

#include <algorithm>
#include <functional>
#include <utility>

#include "catalogue/catalogue.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

std::size_t combineHash(std::size_t seed, std::size_t value) noexcept {
  return (seed ^ value) * 0x9e3779b97f4a7c15U + (seed >> 32);
}

std::size_t hashOf(const VersionId& version) noexcept {
  if (!version.isSemVer()) return std::hash<std::u16string>()(version.getText());
  const SemVer& semantic = version.getSemVer();
  return combineHash(combineHash(semantic.major, semantic.minor), semantic.patch);
}

bool precedes(const CatalogueIndex::OrderedVersion& left,
              const CatalogueIndex::OrderedVersion& right) {
  const auto order = left.precedence <=> right.precedence;
  return order < 0 || (order == 0 && left.position < right.position);
}

bool isBelow(const CatalogueIndex::OrderedVersion& entry, const Precedence& bound) {
  return entry.precedence < bound;
}

bool isAbove(const Precedence& bound, const CatalogueIndex::OrderedVersion& entry) {
  return bound < entry.precedence;
}

VersionScale scaleOf(const std::vector<CatalogueIndex::OrderedVersion>& ordered) {
  std::vector<Precedence> precedences;
  precedences.reserve(ordered.size());
  for (const auto& entry : ordered) precedences.push_back(entry.precedence);
  return VersionScale(std::move(precedences));
}

template <class Map, class Key>
const CatalogueIndex::Positions& positionsIn(const Map& map, const Key& key) {
  static const CatalogueIndex::Positions none;
  const auto found = map.find(key);
  return found == map.end() ? none : found->second;
}

}  // namespace

std::size_t CatalogueIndex::VersionKeyHash::operator()(const VersionKey& key) const noexcept {
  return operator()(VersionKeyView{key.name, key.version});
}

std::size_t CatalogueIndex::VersionKeyHash::operator()(const VersionKeyView& key) const noexcept {
  return combineHash(std::hash<std::u16string>()(key.name), hashOf(key.version));
}

CatalogueIndex::CatalogueIndex(const std::vector<CatalogueMetamodel>& metamodels,
                               const std::vector<pathfinder::Hop>& hops) {
  for (Position position = 0; position < metamodels.size(); ++position) {
    const auto& [name, version, dependencies] = metamodels[position].descriptor;
    metamodels_[{name, version}].push_back(position);
    metamodelsByName_[name].push_back(position);
    const auto& equivalent = metamodels[position].equivalent;
    if (equivalent) metamodels_[{name, *equivalent}].push_back(position);
    auto& ordered = ordered_[name];  // there also for a name without any
    if (const auto precedence = metamodels[position].precedence()) {
      ordered.push_back({*precedence, position});
    }
  }
  for (auto& [name, ordered] : ordered_) {
    std::sort(ordered.begin(), ordered.end(), precedes);
    VersionScale scale = scaleOf(ordered);
    if (scale.isOwn()) scales_.emplace(name, std::move(scale));
  }
  for (Position position = 0; position < hops.size(); ++position) {
    hops_[{hops[position].name, hops[position].from}].push_back(position);
    hopsByName_[hops[position].name].push_back(position);
  }
}

const CatalogueIndex::Positions& CatalogueIndex::metamodelsAt(const std::u16string& name,
                                                              const VersionId& version) const {
  return positionsIn(metamodels_, VersionKeyView{name, version});
}

CatalogueIndex::Positions CatalogueIndex::metamodelsIn(const std::u16string& name,
                                                       const VersionRange& range) const {
  if (isUnion(range)) return metamodelsInAny(name, piecesOf(range));
  const auto single = findSingleVersion(range);
  if (single && !single->isSemVer()) return metamodelsAt(name, *single);
  const auto& versions = orderedVersions(name);
  const auto from = [&](const VersionId& version) {
    return std::lower_bound(versions.begin(), versions.end(), *Precedence::of(version), isBelow);
  };
  const auto bounds = boundsOf(range);
  const auto first = from(bounds ? bounds->lower : *single);
  const auto last =
      bounds ? from(bounds->upper)
             : std::upper_bound(first, versions.end(), Precedence(single->getSemVer()), isAbove);
  Positions result;
  for (auto entry = first; entry < last; ++entry) result.push_back(entry->position);
  std::sort(result.begin(), result.end());
  return result;
}

CatalogueIndex::Positions CatalogueIndex::metamodelsInAny(
    const std::u16string& name, const std::vector<VersionRange>& ranges) const {
  Positions result;
  for (const VersionRange& range : ranges) {
    const Positions found = metamodelsIn(name, range);
    result.insert(result.end(), found.begin(), found.end());
  }
  std::sort(result.begin(), result.end());
  result.erase(std::unique(result.begin(), result.end()), result.end());
  return result;
}

const CatalogueIndex::Positions& CatalogueIndex::hopsFrom(const std::u16string& name,
                                                          const VersionId& version) const {
  return positionsIn(hops_, VersionKeyView{name, version});
}

const CatalogueIndex::Positions& CatalogueIndex::metamodelsOf(const std::u16string& name) const {
  return positionsIn(metamodelsByName_, name);
}

const CatalogueIndex::Positions& CatalogueIndex::hopsOf(const std::u16string& name) const {
  return positionsIn(hopsByName_, name);
}

const std::vector<CatalogueIndex::OrderedVersion>& CatalogueIndex::orderedVersions(
    const std::u16string& name) const {
  static const std::vector<OrderedVersion> none;
  const auto found = ordered_.find(name);
  return found == ordered_.end() ? none : found->second;
}

const VersionScale& CatalogueIndex::scale(const std::u16string& name) const {
  static const VersionScale none;
  const auto found = scales_.find(name);
  return found == scales_.end() ? none : found->second;
}

}  // namespace tarn::evolution::catalogue
