#include "catalogue/store/sqlite_reader.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "catalogue/range_union.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

// The sign before a column keeps SQLite from walking the whole table in that column's order.
#define SELECT_METAMODELS "SELECT position, version, equivalent FROM metamodels "
#define OF_NAME "WHERE name = (SELECT id FROM names WHERE name = ?1) "
#define SELECT_HOPS "SELECT position, source, target, expensive FROM hops "

constexpr const char* selectRange =
    SELECT_METAMODELS OF_NAME "AND semver >= ?2 AND semver < ?3 ORDER BY +position";
constexpr const char* selectSemVer = SELECT_METAMODELS OF_NAME "AND semver = ?2 ORDER BY +position";
constexpr const char* selectText = SELECT_METAMODELS OF_NAME "AND version = ?2 ORDER BY +position";
constexpr const char* selectAt = SELECT_METAMODELS "WHERE position = ?1";
constexpr const char* selectTexts =
    "SELECT position, version FROM metamodels " OF_NAME "AND version < x'' AND equivalent IS NULL";
constexpr const char* selectVersions =
    "SELECT position, version, equivalent FROM metamodels " OF_NAME;
constexpr const char* selectMetamodels = SELECT_METAMODELS OF_NAME "ORDER BY +position";
constexpr const char* selectHopsFrom = SELECT_HOPS OF_NAME "AND source = ?2 ORDER BY +position";
constexpr const char* selectHops = SELECT_HOPS OF_NAME "ORDER BY +position";
constexpr const char* selectDependencies =
    "SELECT names.name, version, lower, upper FROM dependencies "
    "JOIN names ON names.id = dependencies.name WHERE metamodel = ?1 ORDER BY ordinal";

#undef SELECT_METAMODELS
#undef OF_NAME
#undef SELECT_HOPS

/// How many versions the cache of orders is made for.
constexpr std::size_t orderedVersions = 100000;

}  // namespace

SqliteReader::SqliteReader(SqliteDatabase& database)
    : database_(database),
      orders_(orderedVersions),
      selectRange_(database, selectRange),
      selectSemVer_(database, selectSemVer),
      selectText_(database, selectText),
      selectAt_(database, selectAt),
      selectTexts_(database, selectTexts),
      selectVersions_(database, selectVersions),
      selectMetamodels_(database, selectMetamodels),
      selectDependencies_(database, selectDependencies),
      selectHopsFrom_(database, selectHopsFrom),
      selectHops_(database, selectHops) {}

std::vector<StoredMetamodel> SqliteReader::metamodelsIn(const std::u16string& name,
                                                        const VersionRange& range) {
  if (isUnion(range)) return metamodelsInAny(name, piecesOf(range));
  const auto single = findSingleVersion(range);
  if (single && !single->isSemVer()) return metamodelsAt(name, *single);
  const auto order = orderOf(name);
  if (!order->ascending.empty()) return metamodelsIn(*order, name, range);
  if (single) return metamodelsAt(name, *single);
  const auto stored = storedText(name);
  if (!stored) return {};
  if (!range.isSemVerRange()) return metamodelsIn(readOrder(*stored), name, range);
  const auto& [lower, upper] = range.getSemVerRange();
  return metamodels(selectRange_.query(*stored, pack(lower), pack(upper)), name);
}

std::vector<StoredMetamodel> SqliteReader::metamodelsAt(const std::u16string& name,
                                                        const VersionId& version) {
  const auto stored = storedText(name);
  if (!stored) return {};
  if (version.isSemVer()) {
    return metamodels(selectSemVer_.query(*stored, pack(version.getSemVer())), name);
  }
  const auto text = storedText(version.getText());
  if (!text) return {};
  return metamodels(selectText_.query(*stored, *text), name);
}

std::vector<StoredMetamodel> SqliteReader::metamodelsIn(const NameOrder& order,
                                                        const std::u16string& name,
                                                        const VersionRange& range) {
  const auto& versions = order.ascending;
  const auto from = [&](const Precedence& bound) {
    return std::partition_point(versions.begin(), versions.end(),
                                [&](const auto& entry) { return entry.first < bound; });
  };
  const auto bounds = boundsOf(range);
  auto first = from(*Precedence::of(bounds ? bounds->lower : *findSingleVersion(range)));
  std::vector<std::int64_t> positions;
  for (; first != versions.end() && admits(range, VersionId(), first->first); ++first) {
    positions.push_back(first->second);
  }
  std::sort(positions.begin(), positions.end());
  std::vector<StoredMetamodel> result;
  result.reserve(positions.size());
  for (const std::int64_t position : positions) {
    for (StoredMetamodel& stored : metamodels(selectAt_.query(position), name)) {
      result.push_back(std::move(stored));
    }
  }
  return result;
}

std::shared_ptr<const VersionScale> SqliteReader::scale(const std::u16string& name) {
  const auto order = orderOf(name);
  return {order, &order->scale};
}

std::shared_ptr<const SqliteReader::NameOrder> SqliteReader::orderOf(const std::u16string& name) {
  if (auto known = orders_.find(name)) return known;
  const auto stored = storedText(name);
  NameOrder order;
  if (stored && hasReadableText(*stored)) order = readOrder(*stored);
  const std::size_t size = 1 + order.ascending.size();
  return orders_.add(name, std::move(order), size);
}

bool SqliteReader::hasReadableText(const std::string& name) {
  auto rows = selectTexts_.query(name);
  while (rows.next()) {
    const auto text =
        readRow(database_, "metamodels", rows.number(0), [&] { return textIn(rows, 1); });
    if (Precedence::read(text)) return true;
  }
  return false;
}

SqliteReader::NameOrder SqliteReader::readOrder(const std::string& name) {
  NameOrder order;
  std::vector<Precedence> precedences;
  auto rows = selectVersions_.query(name);
  while (rows.next()) {
    const auto precedence = readRow(database_, "metamodels", rows.number(0), [&] {
      const auto equivalent = optionalSemVerIn(rows, 2);
      return equivalent ? Precedence(*equivalent) : Precedence::of(versionIn(rows, 1));
    });
    if (!precedence) continue;
    order.ascending.emplace_back(*precedence, rows.number(0));
    precedences.push_back(*precedence);
  }
  std::sort(order.ascending.begin(), order.ascending.end());
  order.scale = VersionScale(std::move(precedences));
  return order;
}

std::vector<StoredMetamodel> SqliteReader::metamodelsInAny(
    const std::u16string& name, const std::vector<VersionRange>& ranges) {
  std::map<std::int64_t, StoredMetamodel> found;
  for (const VersionRange& range : ranges) {
    for (StoredMetamodel& stored : metamodelsIn(name, range)) {
      found.emplace(stored.position, std::move(stored));
    }
  }
  std::vector<StoredMetamodel> result;
  result.reserve(found.size());
  for (auto& [position, stored] : found) result.push_back(std::move(stored));
  return result;
}

std::vector<Hop> SqliteReader::hopsFrom(const std::u16string& name, const VersionId& version) {
  const auto stored = storedText(name);
  if (!stored || (!version.isSemVer() && !storedText(version.getText()))) return {};
  return hops(selectHopsFrom_.query(*stored, storedVersion(version)), name);
}

std::vector<std::u16string> SqliteReader::names() {
  SqliteStatement statement(database_,
                            "SELECT id, name FROM names WHERE EXISTS "
                            "(SELECT 1 FROM metamodels WHERE metamodels.name = names.id)");
  auto rows = statement.query();
  std::vector<std::u16string> result;
  while (rows.next()) {
    result.push_back(readRow(database_, "names", rows.number(0), [&] { return textIn(rows, 1); }));
  }
  std::sort(result.begin(), result.end());
  return result;
}

StoredMetamodel SqliteReader::metamodelAt(std::int64_t position) {
  SqliteStatement statement(database_,
                            "SELECT position, version, equivalent, names.name FROM metamodels "
                            "JOIN names ON names.id = metamodels.name WHERE position = ?1");
  auto rows = statement.query(position);
  if (!rows.next()) {
    database_.failDamaged("table metamodels", "it has no row " + std::to_string(position));
  }
  const auto name = readRow(database_, "metamodels", position, [&] { return textIn(rows, 3); });
  return metamodelIn(rows, name);
}

std::vector<StoredMetamodel> SqliteReader::metamodelsOf(const std::u16string& name) {
  const auto stored = storedText(name);
  if (!stored) return {};
  return metamodels(selectMetamodels_.query(*stored), name);
}

std::vector<Hop> SqliteReader::hopsOf(const std::u16string& name) {
  const auto stored = storedText(name);
  if (!stored) return {};
  return hops(selectHops_.query(*stored), name);
}

std::optional<Question> SqliteReader::question() {
  if (database_.number("SELECT count(*) FROM question") == 0) return std::nullopt;
  SqliteStatement statement(database_, "SELECT name, version, side FROM question_versions");
  auto rows = statement.query();
  Question question;
  while (rows.next()) {
    readRow(database_, "question_versions", 0, [&] {
      Selection& selection = rows.bytes(2) == "from" ? question.from : question.to;
      selection.emplace(textIn(rows, 0), versionIn(rows, 1));
    });
  }
  return question;
}

void SqliteReader::readAll(CatalogueSink& sink) {
  SqliteStatement metamodelStatement(
      database_,
      "SELECT position, version, equivalent, names.name FROM metamodels "
      "JOIN names ON names.id = metamodels.name ORDER BY position");
  auto metamodelRows = metamodelStatement.query();
  while (metamodelRows.next()) {
    const auto name = readRow(database_, "metamodels", metamodelRows.number(0),
                              [&] { return textIn(metamodelRows, 3); });
    sink.addMetamodel(metamodelIn(metamodelRows, name).metamodel);
  }
  SqliteStatement hopStatement(database_,
                               "SELECT position, source, target, expensive, names.name FROM hops "
                               "JOIN names ON names.id = hops.name ORDER BY position");
  auto hopRows = hopStatement.query();
  while (hopRows.next()) {
    const auto name =
        readRow(database_, "hops", hopRows.number(0), [&] { return textIn(hopRows, 4); });
    sink.addHop(hopIn(hopRows, name));
  }
  if (const auto own = question()) sink.setQuestion(*own);
}

StoredMetamodel SqliteReader::metamodelIn(const SqliteStatement::Rows& rows,
                                          const std::u16string& name) {
  const std::int64_t position = rows.number(0);
  return readRow(database_, "metamodels", position, [&] {
    return StoredMetamodel{
        position,
        {Metamodel(name, versionIn(rows, 1), dependenciesOf(position)), optionalSemVerIn(rows, 2)}};
  });
}

std::vector<StoredMetamodel> SqliteReader::metamodels(SqliteStatement::Rows rows,
                                                      const std::u16string& name) {
  std::vector<StoredMetamodel> result;
  while (rows.next()) result.push_back(metamodelIn(rows, name));
  return result;
}

Hop SqliteReader::hopIn(const SqliteStatement::Rows& rows, const std::u16string& name) const {
  return readRow(database_, "hops", rows.number(0), [&] {
    return Hop(name, versionIn(rows, 1), versionIn(rows, 2), rows.number(3) != 0);
  });
}

std::vector<Hop> SqliteReader::hops(SqliteStatement::Rows rows, const std::u16string& name) const {
  std::vector<Hop> result;
  while (rows.next()) result.push_back(hopIn(rows, name));
  return result;
}

std::vector<Dependency> SqliteReader::dependenciesOf(std::int64_t position) {
  auto rows = selectDependencies_.query(position);
  std::vector<Dependency> result;
  while (rows.next()) {
    result.push_back(readRow(database_, "dependencies", position,
                             [&] { return Dependency(textIn(rows, 0), rangeIn(rows, 1)); }));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
