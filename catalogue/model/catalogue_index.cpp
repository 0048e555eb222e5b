#include "catalogue/catalogue_index.hpp"

#include <algorithm>
#include <functional>

#include "catalogue/catalogue.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
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

bool precedes(const CatalogueIndex::SemanticVersion& left,
              const CatalogueIndex::SemanticVersion& right) {
  if (left.version == right.version) return left.position < right.position;
  return left.version < right.version;
}

bool isBelow(const CatalogueIndex::SemanticVersion& entry, const SemVer& bound) {
  return entry.version < bound;
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
    auto& semantic = semanticVersions_[name];  // there also for a name of text versions only
    const auto semVer = metamodels[position].semVer();
    if (!semVer) continue;
    semantic.push_back({*semVer, position});
    if (!version.isSemVer()) metamodels_[{name, *semVer}].push_back(position);
  }
  for (auto& [name, semantic] : semanticVersions_) {
    std::sort(semantic.begin(), semantic.end(), precedes);
  }
  for (Position position = 0; position < hops.size(); ++position) {
    hops_[{hops[position].name, hops[position].from}].push_back(position);
  }
}

const CatalogueIndex::Positions& CatalogueIndex::metamodelsAt(const std::u16string& name,
                                                              const VersionId& version) const {
  return lookUp(metamodels_, {name, version});
}

CatalogueIndex::Positions CatalogueIndex::metamodelsIn(const std::u16string& name,
                                                       const VersionRange& range) const {
  if (isUnion(range)) return metamodelsInAny(name, piecesOf(range));
  if (const auto single = findSingleVersion(range)) return metamodelsAt(name, *single);
  const SemVerRange& bounds = range.getSemVerRange();
  const auto& versions = semanticVersions(name);
  const auto first = std::lower_bound(versions.begin(), versions.end(), bounds.lower, isBelow);
  Positions result;
  for (auto entry = first; entry != versions.end() && entry->version < bounds.upper; ++entry) {
    result.push_back(entry->position);
  }
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
  return lookUp(hops_, {name, version});
}

const std::vector<CatalogueIndex::SemanticVersion>& CatalogueIndex::semanticVersions(
    const std::u16string& name) const {
  static const std::vector<SemanticVersion> none;
  const auto found = semanticVersions_.find(name);
  return found == semanticVersions_.end() ? none : found->second;
}

const CatalogueIndex::Positions& CatalogueIndex::lookUp(const ByVersion& map,
                                                        const VersionKeyView& key) {
  static const Positions none;
  const auto found = map.find(key);
  return found == map.end() ? none : found->second;
}

}  // namespace tarn::evolution::catalogue
