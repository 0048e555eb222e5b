#include "catalogue/store/sqlite_reader.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "catalogue/model/dependency_split.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/store/sqlite_schema.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

/// The columns of a metamodel, all but its name; those of stores of the first form have no notes.
std::string selectMetamodels(bool hasNotes) {
  return std::string("SELECT position, version, equivalent, ") +
         (hasNotes ? "metamodels.note" : "NULL") + " AS note";
}

std::string selectHops(bool hasNotes) {
  return std::string("SELECT position, source, target, expensive, ") +
         (hasNotes ? "hops.note" : "NULL") + " AS note";
}

std::string selectDependencies(std::int64_t form) {
  return std::string("SELECT names.name, version, lower, upper, ") +
         (form >= firstFormWithNotes ? "note, " : "NULL, ") +
         (form >= firstFormWithOptional ? "optional" : "0") +
         " FROM dependencies JOIN names ON names.id = dependencies.name WHERE metamodel = ?1 "
         "ORDER BY ordinal";
}

// The sign before a column keeps SQLite from walking the whole table in that column's order.

std::string metamodelsOfName(bool hasNotes, const char* condition = "") {
  return selectMetamodels(hasNotes) +
         " FROM metamodels WHERE name = (SELECT id FROM names WHERE name = ?1) " + condition;
}

std::string metamodelsWhere(bool hasNotes, const char* condition = "") {
  return metamodelsOfName(hasNotes, condition) + " ORDER BY +position";
}

constexpr const char* selectTexts =
    "SELECT position, version FROM metamodels WHERE name = (SELECT id FROM names WHERE name = ?1) "
    "AND version < x'' AND equivalent IS NULL";

std::string hopsWhere(bool hasNotes, const char* condition = "") {
  return selectHops(hasNotes) + " FROM hops WHERE name = (SELECT id FROM names WHERE name = ?1) " +
         condition + " ORDER BY +position";
}

/// How many versions the cache of orders is made for.
constexpr std::size_t orderedVersions = 100000;

}  // namespace

SqliteReader::SqliteReader(SqliteDatabase& database)
    : database_(database),
      orders_(orderedVersions),
      hasNotes_(database.number("PRAGMA user_version") >= firstFormWithNotes),
      selectRange_(database, metamodelsWhere(hasNotes_, "AND semver >= ?2 AND semver < ?3")),
      selectSemVer_(database, metamodelsWhere(hasNotes_, "AND semver = ?2")),
      selectText_(database, metamodelsWhere(hasNotes_, "AND version = ?2")),
      selectAt_(database, selectMetamodels(hasNotes_) + " FROM metamodels WHERE position = ?1"),
      selectTexts_(database, selectTexts),
      selectVersions_(database, metamodelsOfName(hasNotes_)),
      selectMetamodels_(database, metamodelsWhere(hasNotes_)),
      selectDependencies_(database, selectDependencies(database.number("PRAGMA user_version"))),
      selectHopsFrom_(database, hopsWhere(hasNotes_, "AND source = ?2")),
      selectHops_(database, hopsWhere(hasNotes_)) {}

std::vector<StoredMetamodel> SqliteReader::metamodelsIn(const std::u16string& name,
                                                        const VersionRange& range) {
  if (isUnion(range)) return metamodelsInAny(name, piecesOf(range));
  const auto single = findSingleVersion(range);
  if (single && !single->isSemVer()) return metamodelsAt(name, *single);
  const auto order = orderOf(name);
  if (!order->ascending.empty()) return metamodelsIn(*order, name, range);
  if (single) return metamodelsAt(name, *single);
  if (!range.isSemVerRange()) return metamodelsIn(readOrder(name), name, range);
  const auto& [lower, upper] = range.getSemVerRange();
  return metamodels(selectRange_.query(sought(name), pack(lower), pack(upper)), name);
}

std::vector<StoredMetamodel> SqliteReader::metamodelsAt(const std::u16string& name,
                                                        const VersionId& version) {
  SqliteStatement& select = version.isSemVer() ? selectSemVer_ : selectText_;
  return metamodels(select.query(sought(name), sought(version)), name);
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
  const VersionId none(u"");  // no version's text, so that the precedence alone decides
  std::vector<std::int64_t> positions;
  for (; first != versions.end() && admits(range, none, first->first); ++first) {
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
  return orders_.get(name, [&] { return hasReadableText(name) ? readOrder(name) : NameOrder(); });
}

bool SqliteReader::hasReadableText(const std::u16string& name) {
  auto rows = selectTexts_.query(sought(name));
  while (rows.next()) {
    const auto text =
        readRow(database_, "metamodels", rows.number(0), [&] { return textIn(rows, 1); });
    if (Precedence::read(text)) return true;
  }
  return false;
}

SqliteReader::NameOrder SqliteReader::readOrder(const std::u16string& name) {
  NameOrder order;
  std::vector<Precedence> precedences;
  auto rows = selectVersions_.query(sought(name));
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
  return hops(selectHopsFrom_.query(sought(name), sought(version)), name);
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
                            selectMetamodels(hasNotes_) +
                                ", names.name FROM metamodels "
                                "JOIN names ON names.id = metamodels.name WHERE position = ?1");
  auto rows = statement.query(position);
  if (!rows.next()) {
    database_.failDamaged("table metamodels", "it has no row " + std::to_string(position));
  }
  const auto name = readRow(database_, "metamodels", position, [&] { return textIn(rows, 4); });
  return metamodelIn(rows, name);
}

std::vector<StoredMetamodel> SqliteReader::metamodelsOf(const std::u16string& name) {
  return metamodels(selectMetamodels_.query(sought(name)), name);
}

std::vector<Hop> SqliteReader::hopsOf(const std::u16string& name) {
  return hops(selectHops_.query(sought(name)), name);
}

std::u16string SqliteReader::noteOf(const Hop& hop) {
  if (!hasNotes_) return {};
  SqliteStatement statement(database_,
                            hopsWhere(hasNotes_, "AND source = ?2 AND target = ?3 AND note <> ''"));
  auto rows = statement.query(sought(hop.name), sought(hop.from), sought(hop.to));
  if (!rows.next()) return {};
  return readRow(database_, "hops", rows.number(0), [&] { return noteIn(rows, 4); });
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
      database_, selectMetamodels(hasNotes_) +
                     ", names.name FROM metamodels "
                     "JOIN names ON names.id = metamodels.name ORDER BY position");
  auto metamodelRows = metamodelStatement.query();
  while (metamodelRows.next()) {
    const auto name = readRow(database_, "metamodels", metamodelRows.number(0),
                              [&] { return textIn(metamodelRows, 4); });
    sink.addMetamodel(metamodelIn(metamodelRows, name).metamodel);
  }
  SqliteStatement hopStatement(database_,
                               selectHops(hasNotes_) +
                                   ", names.name FROM hops "
                                   "JOIN names ON names.id = hops.name ORDER BY position");
  auto hopRows = hopStatement.query();
  while (hopRows.next()) {
    const auto row = hopRows.number(0);
    const auto name = readRow(database_, "hops", row, [&] { return textIn(hopRows, 5); });
    sink.addHop(hopIn(hopRows, name),
                readRow(database_, "hops", row, [&] { return noteIn(hopRows, 4); }));
  }
  if (const auto own = question()) sink.setQuestion(*own);
}

StoredMetamodel SqliteReader::metamodelIn(const SqliteStatement::Rows& rows,
                                          const std::u16string& name) {
  const std::int64_t position = rows.number(0);
  return readRow(database_, "metamodels", position, [&] {
    StoredMetamodel stored{
        position,
        {Metamodel(name, versionIn(rows, 1), {}), optionalSemVerIn(rows, 2), noteIn(rows, 3)}};
    readDependencies(position, stored.metamodel);
    return stored;
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

void SqliteReader::readDependencies(std::int64_t position, CatalogueMetamodel& metamodel) {
  auto rows = selectDependencies_.query(position);
  while (rows.next()) {
    readRow(database_, "dependencies", position, [&] {
      addDependency(metamodel, {textIn(rows, 0), rangeIn(rows, 1), rows.number(5) != 0},
                    noteIn(rows, 4));
    });
  }
}

}  // namespace tarn::evolution::catalogue
