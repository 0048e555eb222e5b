#include "catalogue/model/row_repository.hpp"

#include <stdexcept>

#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

void expectName(const std::u16string& asked, const std::u16string& listed, const char* what) {
  if (listed == asked) return;
  throw std::logic_error("asked for the " + std::string(what) + " of " + quotedName(asked) +
                         ", one of " + quotedName(listed) + " was listed");
}

bool liesIn(const VersionRange& range, const CatalogueMetamodel& row) {
  return range.includes(row.descriptor.version) ||
         (row.equivalent && range.includes(*row.equivalent));
}

}  // namespace

std::optional<SemVer> RowRepository::getEquivalentSemVer(const std::u16string& metamodelName,
                                                         const std::u16string& versionText) {
  const VersionRange range(versionText);
  for (const CatalogueMetamodel& row : checkedRowsOf(metamodelName, &range)) {
    if (range.includes(row.descriptor.version)) return row.equivalent;
  }
  return std::nullopt;
}

void RowRepository::findMetamodels(const std::u16string& name, const VersionRange& range,
                                   std::vector<Metamodel>& result) {
  for (CatalogueMetamodel& row : checkedRowsOf(name, &range)) {
    if (liesIn(range, row)) result.push_back(std::move(row.descriptor));
  }
}

void RowRepository::findHops(const std::u16string& name, const VersionId& from,
                             std::vector<Hop>& result) {
  for (Hop& hop : checkedHopsOf(name, &from)) {
    if (hop.from == from) result.push_back(std::move(hop));
  }
}

std::vector<CatalogueMetamodel> RowRepository::listMetamodels(const std::u16string& name) {
  return checkedRowsOf(name, nullptr);
}

std::vector<Hop> RowRepository::listHops(const std::u16string& name) {
  return checkedHopsOf(name, nullptr);
}

std::u16string RowRepository::findVersionNote(const std::u16string& name,
                                              const VersionId& version) {
  const VersionRange range = VersionRange::singleVersion(version);
  for (CatalogueMetamodel& row : checkedRowsOf(name, &range)) {
    if (row.descriptor.version == version) return std::move(row.note);
  }
  return {};
}

std::vector<CatalogueMetamodel> RowRepository::checkedRowsOf(const std::u16string& name,
                                                             const VersionRange* range) {
  std::vector<CatalogueMetamodel> rows = rowsOf(name, range);
  for (const auto& row : rows) expectName(name, row.descriptor.name, "metamodels");
  return rows;
}

std::vector<Hop> RowRepository::checkedHopsOf(const std::u16string& name, const VersionId* from) {
  std::vector<Hop> hops = hopsOf(name, from);
  for (const Hop& hop : hops) expectName(name, hop.name, "hops");
  return hops;
}

}  // namespace tarn::evolution::catalogue
