#include "catalogue/store/sqlite_schema.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "catalogue/reading/file_error.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr std::int64_t applicationId = 0x45564F50;  // "EVOP"

// A column of any type holds a version: a text version as a text, a semantic version as a blob of
// 24 bytes, its components as big-endian numbers, which sort as the versions do. `position` is the
// order of the catalogue, and gaps in it mean nothing. That no version and no equivalent stands
// twice is checked by whoever writes.
constexpr const char* version1 = R"(
CREATE TABLE names (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE
) STRICT;

CREATE TABLE metamodels (
  position INTEGER PRIMARY KEY,
  name INTEGER NOT NULL REFERENCES names (id),
  version ANY NOT NULL
    CHECK (typeof(version) = 'text' OR typeof(version) = 'blob' AND length(version) = 24),
  equivalent BLOB CHECK (equivalent IS NULL OR length(equivalent) = 24),
  semver BLOB AS (CASE typeof(version) WHEN 'blob' THEN version ELSE equivalent END) VIRTUAL
) STRICT;
CREATE INDEX metamodels_by_version ON metamodels (name, version);
CREATE INDEX metamodels_by_semver ON metamodels (name, semver);

CREATE TABLE dependencies (
  metamodel INTEGER NOT NULL REFERENCES metamodels (position) ON DELETE CASCADE,
  ordinal INTEGER NOT NULL,
  name INTEGER NOT NULL REFERENCES names (id),
  version TEXT,
  lower BLOB CHECK (lower IS NULL OR length(lower) = 24),
  upper BLOB CHECK (upper IS NULL OR length(upper) = 24),
  PRIMARY KEY (metamodel, ordinal),
  CHECK ((version IS NULL) = (lower IS NOT NULL) AND (version IS NULL) = (upper IS NOT NULL))
) STRICT, WITHOUT ROWID;
CREATE INDEX dependencies_by_name ON dependencies (name);

CREATE TABLE hops (
  position INTEGER PRIMARY KEY,
  name INTEGER NOT NULL REFERENCES names (id),
  source ANY NOT NULL
    CHECK (typeof(source) = 'text' OR typeof(source) = 'blob' AND length(source) = 24),
  target ANY NOT NULL
    CHECK (typeof(target) = 'text' OR typeof(target) = 'blob' AND length(target) = 24),
  expensive INTEGER NOT NULL CHECK (expensive IN (0, 1))
) STRICT;
CREATE INDEX hops_by_source ON hops (name, source);

CREATE TABLE question (
  id INTEGER PRIMARY KEY CHECK (id = 0)
) STRICT;
CREATE TABLE question_versions (
  question INTEGER NOT NULL REFERENCES question (id) ON DELETE CASCADE,
  side TEXT NOT NULL CHECK (side IN ('from', 'to')),
  name TEXT NOT NULL,
  version ANY NOT NULL
    CHECK (typeof(version) = 'text' OR typeof(version) = 'blob' AND length(version) = 24),
  PRIMARY KEY (question, side, name)
) STRICT, WITHOUT ROWID;
)";

// What is told of a row, for people to read.
constexpr const char* version2 = R"(
ALTER TABLE metamodels ADD COLUMN note TEXT;
ALTER TABLE dependencies ADD COLUMN note TEXT;
ALTER TABLE hops ADD COLUMN note TEXT;
)";

// What is needed only if it is there.
constexpr const char* version3 = R"(
ALTER TABLE dependencies ADD COLUMN optional INTEGER NOT NULL DEFAULT 0 CHECK (optional IN (0, 1));
)";

/// The tables and indices of a database, by name, as they were created.
std::map<std::string, std::string> objectsOf(SqliteDatabase& database) {
  std::map<std::string, std::string> result;
  SqliteStatement objects(database, "SELECT name, sql FROM sqlite_schema WHERE sql IS NOT NULL");
  auto rows = objects.query();
  while (rows.next()) result.emplace(rows.bytes(0), rows.bytes(1));
  return result;
}

/// The same of a store that these steps make.
std::map<std::string, std::string> objectsMadeBy(const std::vector<const char*>& steps) {
  SqliteDatabase model(SqliteDatabase::inMemory, SqliteDatabase::Access::Build);
  SqliteSchema(steps).create(model);
  return objectsOf(model);
}

void setVersion(SqliteDatabase& database, std::int64_t version) {
  database.run(("PRAGMA user_version = " + std::to_string(version)).c_str());
}

}  // namespace

SqliteSchema::SqliteSchema(std::vector<const char*> steps) : steps_(std::move(steps)) {}

const SqliteSchema& SqliteSchema::current() {
  static const SqliteSchema schema({version1, version2, version3});
  return schema;
}

void SqliteSchema::create(SqliteDatabase& database) const {
  database.run(("PRAGMA application_id = " + std::to_string(applicationId)).c_str());
  advance(database, 0);
}

void SqliteSchema::advance(SqliteDatabase& database, std::int64_t from) const {
  for (auto step = static_cast<std::size_t>(from); step < steps_.size(); ++step) {
    database.run(steps_[step]);
  }
  setVersion(database, version());
}

std::int64_t SqliteSchema::checkVersion(SqliteDatabase& database) const {
  const std::int64_t found = database.number("PRAGMA user_version");
  if (found > version()) {
    failFor(database.file(), "is a store of form " + std::to_string(found) + ", newer than form " +
                                 std::to_string(version()) + ", the last that this program knows");
  }
  return found;
}

bool SqliteSchema::check(SqliteDatabase& database) const {
  if (database.number("PRAGMA application_id") != applicationId) {
    failFor(database.file(), "is not a catalogue store, but a SQLite database of another kind");
  }
  const std::int64_t found = checkVersion(database);
  if (found < 1) database.failDamaged("", "it is of no known form");
  const auto objects = objectsOf(database);
  for (const auto& [name, definition] : objectsMadeBy({steps_.begin(), steps_.begin() + found})) {
    const auto present = objects.find(name);
    if (present == objects.end()) database.failDamaged("", "it has no " + name);
    if (present->second != definition) database.failDamaged("", name + " is not as it should be");
  }
  return found == version();
}

void SqliteSchema::checkReplaceable(SqliteDatabase& database) const {
  const std::int64_t found = std::max<std::int64_t>(0, checkVersion(database));
  const auto own = objectsMadeBy({steps_.begin(), steps_.begin() + found});
  SqliteStatement tables(database,
                         "SELECT name FROM sqlite_schema WHERE type = 'table' "
                         "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name");
  auto rows = tables.query();
  while (rows.next()) {
    const std::string name(rows.bytes(0));
    if (own.contains(name)) continue;
    failFor(database.file(), "holds a table of another program, " + name + "; it is left alone");
  }
}

void SqliteSchema::migrate(SqliteDatabase& database) const {
  if (!check(database)) advance(database, database.number("PRAGMA user_version"));
}

}  // namespace tarn::evolution::catalogue
