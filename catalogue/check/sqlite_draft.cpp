#include "catalogue/check/sqlite_draft.hpp"

#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/store/sqlite_schema.hpp"
#include "catalogue/store/store_snapshot.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionRange;
using Rows = SqliteStatement::Rows;

namespace {

// What the schema's CHECK constraints say is looked at here: SQLite itself does so only where it
// may write.

/// A range as it stands in the three columns from `column` on; reversed ones are refused.
VersionRange checkedRangeIn(const Rows& rows, int column) {
  if (!rows.isNull(column) && !(rows.isNull(column + 1) && rows.isNull(column + 2))) {
    throw std::invalid_argument("there are a version and bounds");
  }
  VersionRange range = rangeIn(rows, column);
  if (isReversed(range)) throw std::invalid_argument("the range is reversed");
  return range;
}

class SqliteDraftReader {
 public:
  explicit SqliteDraftReader(SqliteDatabase& database)
      : database_(database),
        form_(database.number("PRAGMA user_version")),
        note_(form_ >= firstFormWithNotes ? "note" : "NULL") {
    draft_.form = CatalogueDraft::Form::Tables;
  }

  CatalogueDraft read() {
    try {
      checkIntegrity();
      readTables();
    } catch (const CatalogueError& error) {
      draft_.isReadable = false;
      find(FindingCode::DamagedStore, {}, error.reason());
    }
    return std::move(draft_);
  }

 private:
  void checkIntegrity() {
    SqliteStatement check(database_, "PRAGMA integrity_check");
    auto rows = check.query();
    while (rows.next()) {
      if (rows.bytes(0) == "ok") continue;
      find(FindingCode::DamagedStore, {}, std::string(rows.bytes(0)));
    }
  }

  void readTables() {
    readMetamodels();
    SqliteStatement hops(
        database_, "SELECT position, names.name, source, target, hops.name, expensive, " + note_ +
                       " FROM hops "
                       "LEFT JOIN names ON names.id = hops.name ORDER BY position");
    auto rows = hops.query();
    while (rows.next()) readHop(rows);
    readQuestion();
  }

  void readMetamodels() {
    SqliteStatement metamodels(
        database_, "SELECT position, names.name, version, equivalent, metamodels.name, " + note_ +
                       " FROM metamodels "
                       "LEFT JOIN names ON names.id = metamodels.name ORDER BY position");
    SqliteStatement dependencies(
        database_,
        "SELECT metamodel, ordinal, names.name, version, lower, upper, dependencies.name, " +
            note_ + (form_ >= firstFormWithOptional ? ", optional" : ", 0") +
            " FROM dependencies LEFT JOIN names ON names.id = dependencies.name "
            "ORDER BY metamodel, ordinal");
    auto rows = metamodels.query();
    auto dependencyRows = dependencies.query();
    bool hasDependency = dependencyRows.next();
    while (rows.next()) {
      const std::int64_t position = rows.number(0);
      while (hasDependency && dependencyRows.number(0) < position) {
        findOrphan(dependencyRows);
        hasDependency = dependencyRows.next();
      }
      MetamodelRow row = readMetamodel(rows);
      while (hasDependency && dependencyRows.number(0) == position) {
        readDependency(dependencyRows, row);
        hasDependency = dependencyRows.next();
      }
      draft_.metamodels.push_back(std::move(row));
    }
    for (; hasDependency; hasDependency = dependencyRows.next()) findOrphan(dependencyRows);
  }

  MetamodelRow readMetamodel(const Rows& rows) {
    MetamodelRow row{.number = numberIn(rows, 0), .order = ++count_};
    row.name = nameIn(rows, 1, 4, draft_.placeOf(row, "name"));
    row.version = orFind(FindingCode::BadVersion, draft_.placeOf(row, "version"),
                         [&] { return versionIn(rows, 2); });
    checkNote(rows, 5, draft_.placeOf(row, "note"));
    if (rows.isNull(3)) return row;
    const Place place = draft_.placeOf(row, "semver");
    row.equivalent = orFind(FindingCode::BadEquivalent, place, [&] { return semVerIn(rows, 3); });
    if (row.version && row.version->isSemVer()) {
      row.equivalent.reset();
      find(FindingCode::BadEquivalent, place, equivalentOfSemVer);
    }
    return row;
  }

  void readDependency(const Rows& rows, MetamodelRow& owner) {
    DependencyRow row{.number = numberIn(rows, 1), .order = ++count_};
    row.name = nameIn(rows, 2, 6, draft_.placeOf(owner, row, "name"));
    row.range = orFind(FindingCode::BadRange, draft_.placeOf(owner, row, "range"),
                       [&] { return checkedRangeIn(rows, 3); });
    checkNote(rows, 7, draft_.placeOf(owner, row, "note"));
    const std::int64_t optional = rows.number(8);
    row.isOptional = optional == 1;
    if (optional != 0 && optional != 1) {
      find(FindingCode::DamagedStore, draft_.placeOf(owner, row, "optional"), "must be 0 or 1");
    }
    owner.dependencies.push_back(std::move(row));
  }

  void findOrphan(const Rows& rows) {
    const MetamodelRow owner{.number = numberIn(rows, 0), .order = ++count_};
    const DependencyRow row{.number = numberIn(rows, 1), .order = count_};
    find(FindingCode::OrphanRow, draft_.placeOf(owner, row),
         "no row of metamodels has the position " + std::to_string(rows.number(0)));
  }

  void readHop(const Rows& rows) {
    HopRow row{.number = numberIn(rows, 0), .order = ++count_};
    row.name = nameIn(rows, 1, 4, draft_.placeOf(row, "name"));
    row.from = orFind(FindingCode::BadVersion, draft_.placeOf(row, "from"),
                      [&] { return versionIn(rows, 2); });
    row.to = orFind(FindingCode::BadVersion, draft_.placeOf(row, "to"),
                    [&] { return versionIn(rows, 3); });
    if (const std::int64_t expensive = rows.number(5); expensive != 0 && expensive != 1) {
      find(FindingCode::DamagedStore, draft_.placeOf(row, "expensive"), "must be 0 or 1");
    }
    checkNote(rows, 6, draft_.placeOf(row, "note"));
    draft_.hops.push_back(std::move(row));
  }

  void checkNote(const Rows& rows, int column, const Place& place) {
    orFind(FindingCode::DamagedStore, place, [&] { return noteIn(rows, column); });
  }

  void readQuestion() {
    if (database_.number("SELECT count(*) FROM question WHERE id <> 0") > 0) {
      find(FindingCode::DamagedStore, {"table question", ++count_}, "it has more than one row");
    }
    if (database_.number("SELECT count(*) FROM question_versions "
                         "WHERE question <> 0 OR side NOT IN ('from', 'to')") > 0) {
      find(FindingCode::DamagedStore, {"table question_versions", ++count_},
           "a row belongs to no side of the question");
    }
    if (database_.number("SELECT count(*) FROM question") == 0) return;
    draft_.questionFrom = readSelection("from");
    draft_.questionTo = readSelection("to");
  }

  SelectionDraft readSelection(const std::string& side) {
    const std::string place = "table question_versions, side " + side;
    SelectionDraft selection{.place = {place, ++count_}};
    SqliteStatement versions(
        database_, "SELECT name, version FROM question_versions WHERE side = ?1 ORDER BY name");
    auto rows = versions.query(side);
    while (rows.next()) {
      const Place at{place + ", name " + std::string(rows.bytes(0)), ++count_};
      const auto name = orFind(FindingCode::BadName, at, [&] { return textIn(rows, 0); });
      const auto version = orFind(FindingCode::BadVersion, at, [&] { return versionIn(rows, 1); });
      if (name && version) {
        selection.rows.push_back({at, *name, *version});
      } else {
        selection.isComplete = false;
      }
    }
    return selection;
  }

  /// The name in a column, which comes from the row of names that another column refers to.
  std::optional<std::u16string> nameIn(const Rows& rows, int column, int reference,
                                       const Place& place) {
    if (!rows.isNull(column)) {
      return orFind(FindingCode::BadName, place, [&] { return textIn(rows, column); });
    }
    find(FindingCode::OrphanRow, place,
         "no row of names has the id " + std::to_string(rows.number(reference)));
    return std::nullopt;
  }

  static std::size_t numberIn(const Rows& rows, int column) {
    return static_cast<std::size_t>(rows.number(column));
  }

  template <class Compute>
  auto orFind(FindingCode code, const Place& place, const Compute& compute)
      -> std::optional<decltype(compute())> {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      find(code, place, error.what());
      return std::nullopt;
    }
  }

  void find(FindingCode code, const Place& place, const std::string& message) {
    draft_.findings.push_back({.code = code, .place = place, .message = message, .related = {}});
  }

  SqliteDatabase& database_;
  const std::int64_t form_;
  const std::string note_;  // the column that notes stand in
  CatalogueDraft draft_;
  std::uint64_t count_ = 0;  // of rows read
};

}  // namespace

CatalogueDraft readSqliteDraft(const std::filesystem::path& file) {
  StoreSnapshot snapshot(file);
  return SqliteDraftReader(snapshot.database()).read();
}

}  // namespace tarn::evolution::catalogue
