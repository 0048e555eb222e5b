#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// From this form on the rows of metamodels, dependencies and hops may have notes.
constexpr std::int64_t firstFormWithNotes = 2;

/// The first form that tells optional dependencies from others.
constexpr std::int64_t firstFormWithOptional = 3;

/// The form of a store: what it consists of, and how each version of that form is made from the one
/// before.
///
/// SQLite's `application_id` tells a store from other databases, and its `user_version` which
/// version of the form it has.
class SqliteSchema {
 public:
  /// One entry for each version from 1 on: the statements that make it from the version before,
  /// version 0 being an empty database.
  explicit SqliteSchema(std::vector<const char*> steps);

  /// The form that this library reads and writes.
  static const SqliteSchema& current();

  std::int64_t version() const { return static_cast<std::int64_t>(steps_.size()); }

  /// Makes an empty store of an empty database, within the caller's transaction.
  void create(SqliteDatabase& database) const;

  /// Throws CatalogueError when the database is no store, is of a newer version of the form, or
  /// does not have what its version says. Whether it is of this version; otherwise it is older.
  bool check(SqliteDatabase& database) const;

  /// Throws CatalogueError when more than a catalogue would go with the store: when it is of a
  /// newer version of the form, or somebody else has tables in it.
  void checkReplaceable(SqliteDatabase& database) const;

  /// Brings a store of an older version to this one, within the caller's transaction.
  void migrate(SqliteDatabase& database) const;

 private:
  std::int64_t checkVersion(SqliteDatabase& database) const;
  void advance(SqliteDatabase& database, std::int64_t from) const;

  std::vector<const char*> steps_;
};

}  // namespace tarn::evolution::catalogue
