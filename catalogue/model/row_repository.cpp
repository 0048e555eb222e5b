#include "catalogue/model/row_repository.hpp"

#include <algorithm>
#include <stdexcept>

#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

bool liesInAny(std::span<const VersionRange> ranges, const CatalogueMetamodel& row) {
  return std::any_of(ranges.begin(), ranges.end(), [&](const VersionRange& range) {
    return admits(range, row.descriptor.version, row.semVer());
  });
}

}  // namespace

void RowRepository::expectName(const std::u16string& asked, const std::u16string& listed,
                               const char* what) {
  if (listed == asked) return;
  throw std::logic_error("asked for the " + std::string(what) + " of " + quotedName(asked) +
                         ", one of " + quotedName(listed) + " was listed");
}

std::optional<SemVer> RowRepository::getEquivalentSemVer(const std::u16string& metamodelName,
                                                         const std::u16string& versionText) {
  const VersionRange range(versionText);
  for (const CatalogueMetamodel& row : checkedRowsOf(metamodelName, {&range, 1})) {
    if (range.includes(row.descriptor.version)) return row.equivalent;
  }
  return std::nullopt;
}

void RowRepository::findMetamodels(const std::u16string& name, const VersionRange& range,
                                   std::vector<Metamodel>& result) {
  const std::vector<VersionRange> ranges = piecesOf(range);
  for (CatalogueMetamodel& row : checkedRowsOf(name, ranges)) {
    if (liesInAny(ranges, row)) result.push_back(std::move(row.descriptor));
  }
}

void RowRepository::findHops(const std::u16string& name, const VersionId& from,
                             std::vector<Hop>& result) {
  for (Hop& hop : checkedHopsOf(name, &from)) {
    if (hop.from == from) result.push_back(std::move(hop));
  }
}

void RowRepository::findRequirements(const Metamodel& metamodel,
                                     std::vector<pathfinder::PeerRequirement>& result) {
  if (!anyRowRequires_) return;
  const auto range = VersionRange::singleVersion(metamodel.version);
  for (CatalogueMetamodel& row : checkedRowsOf(metamodel.name, {&range, 1})) {
    if (row.descriptor.version != metamodel.version) continue;
    for (auto& [needed, note] : row.requirements) result.push_back(std::move(needed));
  }
}

std::vector<CatalogueMetamodel> RowRepository::listMetamodels(const std::u16string& name) {
  return checkedRowsOf(name, {});
}

std::vector<Hop> RowRepository::listHops(const std::u16string& name) {
  return checkedHopsOf(name, nullptr);
}

std::vector<CatalogueMetamodel> RowRepository::checkedRowsOf(const std::u16string& name,
                                                             std::span<const VersionRange> ranges) {
  std::vector<CatalogueMetamodel> rows = rowsOf(name, ranges);
  for (const auto& row : rows) {
    expectName(name, row.descriptor.name, "metamodels");
    if (row.requirements.empty() || anyRowRequires_.exchange(true)) continue;
    useRequirements(*this);  // before the first that has any is linked
  }
  return rows;
}

std::vector<Hop> RowRepository::checkedHopsOf(const std::u16string& name, const VersionId* from) {
  std::vector<Hop> hops = hopsOf(name, from);
  for (const Hop& hop : hops) expectName(name, hop.name, "hops");
  return hops;
}

}  // namespace tarn::evolution::catalogue
