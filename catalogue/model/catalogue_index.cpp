#include "catalogue/catalogue_index.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "catalogue/catalogue.hpp"
#include "catalogue/model/packed_rows.hpp"
#include "catalogue/model/position_table.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;
using Position = CatalogueIndex::Position;

namespace {

/// Of each version of `rows`, a number that orders them by precedence; `nothing` without one.
std::vector<std::uint32_t> precedenceRanks(const PackedRows& rows) {
  std::vector<std::uint32_t> ordered;
  for (std::uint32_t version = 0; version < rows.versionCount(); ++version) {
    if (rows.precedenceOf(version)) ordered.push_back(version);
  }
  const auto precedes = [&](std::uint32_t left, std::uint32_t right) {
    return *rows.precedenceOf(left) < *rows.precedenceOf(right);
  };
  std::sort(ordered.begin(), ordered.end(), precedes);
  std::vector<std::uint32_t> ranks(rows.versionCount(), nothing);
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    if (i > 0 && precedes(ordered[i - 1], ordered[i])) ++rank;
    ranks[ordered[i]] = rank;
  }
  return ranks;
}

VersionScale scaleOf(const PackedRows& rows, std::span<const Position> ordered) {
  std::vector<Precedence> precedences;
  precedences.reserve(ordered.size());
  for (const Position position : ordered) precedences.push_back(*rows.precedence(position));
  return VersionScale(std::move(precedences));
}

/// The entries of rows, by the key that `keyOf` gives each; those with the key `nothing` left out.
template <class Row, class KeyOf>
std::vector<PositionTable::Entry> entriesOf(const std::vector<Row>& rows, const KeyOf& keyOf) {
  std::vector<PositionTable::Entry> entries;
  entries.reserve(rows.size());
  for (Position position = 0; position < rows.size(); ++position) {
    const std::uint32_t key = keyOf(rows[position]);
    if (key != nothing) entries.push_back({rows[position].name, key, position});
  }
  return entries;
}

std::vector<PositionTable::Entry> entriesByVersion(const PackedRows& rows) {
  auto entries = entriesOf(rows.versions(), [](const auto& row) { return row.version; });
  const auto more = entriesOf(rows.versions(), [](const auto& row) { return row.equivalent; });
  entries.insert(entries.end(), more.begin(), more.end());
  return entries;
}

std::vector<PositionTable::Entry> entriesByPrecedence(const PackedRows& rows) {
  const std::vector<std::uint32_t> ranks = precedenceRanks(rows);
  return entriesOf(rows.versions(), [&](const auto& row) { return ranks[row.ordering()]; });
}

constexpr auto sameKey = [](const auto& /*row*/) { return std::uint32_t{0}; };

}  // namespace

/// What an index looks up in.
class IndexTables {
 public:
  explicit IndexTables(std::shared_ptr<const PackedRows> packedRows)
      : rows(std::move(packedRows)),
        metamodels(entriesByVersion(*rows), rows->nameCount()),
        hops(entriesOf(rows->hops(), [](const auto& hop) { return hop.from; }), rows->nameCount()),
        metamodelsByName(entriesOf(rows->versions(), sameKey), rows->nameCount()),
        hopsByName(entriesOf(rows->hops(), sameKey), rows->nameCount()),
        ordered(entriesByPrecedence(*rows), rows->nameCount()) {
    for (NameNumber name = 0; name < rows->nameCount(); ++name) {
      VersionScale scale = scaleOf(*rows, ordered.of(name));
      if (scale.isOwn()) scales.emplace(name, std::move(scale));
    }
  }

  std::span<const Position> at(const PositionTable& table, const std::u16string& name,
                               const VersionId& version) const {
    const std::uint32_t number = rows->numberOfVersion(version);
    if (number == nothing) return {};
    return table.at(rows->numberOfName(name), number);
  }

  const std::shared_ptr<const PackedRows> rows;
  const PositionTable metamodels;  // by version
  const PositionTable hops;        // by the version that they leave
  const PositionTable metamodelsByName;
  const PositionTable hopsByName;
  const PositionTable ordered;                          // by precedence
  std::unordered_map<NameNumber, VersionScale> scales;  // those of names with their own
};

CatalogueIndex::CatalogueIndex(const std::vector<CatalogueMetamodel>& metamodels,
                               const std::vector<pathfinder::Hop>& hops)
    : CatalogueIndex(packRows(metamodels, hops)) {}

CatalogueIndex::CatalogueIndex(std::shared_ptr<const PackedRows> rows)
    : tables_(std::make_shared<const IndexTables>(std::move(rows))) {}

std::span<const Position> CatalogueIndex::metamodelsAt(const std::u16string& name,
                                                       const VersionId& version) const {
  return tables_->at(tables_->metamodels, name, version);
}

std::optional<Position> CatalogueIndex::metamodelOf(const std::u16string& name,
                                                    const VersionId& version) const {
  const auto found = metamodelsAt(name, version);
  if (found.empty()) return std::nullopt;
  const auto carrier = std::find_if(found.begin(), found.end(), [&](Position position) {
    const PackedRows& rows = *tables_->rows;
    return rows.version(rows.versions()[position].version) == version;
  });
  return carrier == found.end() ? found.front() : *carrier;
}

CatalogueIndex::Positions CatalogueIndex::metamodelsIn(const std::u16string& name,
                                                       const VersionRange& range) const {
  if (isUnion(range)) return metamodelsInAny(name, piecesOf(range));
  const auto single = findSingleVersion(range);
  if (single && !single->isSemVer()) {
    const auto found = metamodelsAt(name, *single);
    return {found.begin(), found.end()};
  }
  const auto versions = orderedVersions(name);
  const auto isBelow = [&](Position position, const Precedence& bound) {
    return *precedence(position) < bound;
  };
  const auto isAbove = [&](const Precedence& bound, Position position) {
    return bound < *precedence(position);
  };
  const auto from = [&](const VersionId& version) {
    return std::lower_bound(versions.begin(), versions.end(), *Precedence::of(version), isBelow);
  };
  const auto bounds = boundsOf(range);
  const auto first = from(bounds ? bounds->lower : *single);
  const auto last =
      bounds ? from(bounds->upper)
             : std::upper_bound(first, versions.end(), Precedence(single->getSemVer()), isAbove);
  if (last < first) return {};
  Positions result(first, last);
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

std::span<const Position> CatalogueIndex::hopsFrom(const std::u16string& name,
                                                   const VersionId& version) const {
  return tables_->at(tables_->hops, name, version);
}

std::span<const Position> CatalogueIndex::metamodelsOf(const std::u16string& name) const {
  return tables_->metamodelsByName.of(tables_->rows->numberOfName(name));
}

std::span<const Position> CatalogueIndex::hopsOf(const std::u16string& name) const {
  return tables_->hopsByName.of(tables_->rows->numberOfName(name));
}

std::vector<std::u16string> CatalogueIndex::names() const {
  std::vector<std::u16string> result;
  for (NameNumber name = 0; name < tables_->rows->nameCount(); ++name) {
    if (!tables_->metamodelsByName.of(name).empty()) result.push_back(tables_->rows->name(name));
  }
  std::sort(result.begin(), result.end());
  return result;
}

std::span<const Position> CatalogueIndex::orderedVersions(const std::u16string& name) const {
  return tables_->ordered.of(tables_->rows->numberOfName(name));
}

const std::optional<Precedence>& CatalogueIndex::precedence(Position metamodel) const {
  return tables_->rows->precedence(metamodel);
}

const VersionScale& CatalogueIndex::scale(const std::u16string& name) const {
  static const VersionScale none;
  const auto& scales = tables_->scales;
  if (scales.empty()) return none;
  const auto found = scales.find(tables_->rows->numberOfName(name));
  return found == scales.end() ? none : found->second;
}

}  // namespace tarn::evolution::catalogue
