#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/sqlite_schema.hpp"

namespace tarn::evolution::catalogue {

/// A store that is open for reading, as it is when that begins. Whoever changes stores through this
/// library puts another file in its place and is not held up; who would change the file itself is
/// kept out by SQLite's lock.
class StoreSnapshot {
 public:
  /// A store of an older form stays what it is. A change that another program left unfinished is
  /// undone first, which needs leave to write it. Throws CatalogueError, which names the file, when
  /// it cannot be read or is no store, of `form` or an older one.
  explicit StoreSnapshot(const std::filesystem::path& store,
                         const SqliteSchema& form = SqliteSchema::current());

  SqliteDatabase& database() noexcept { return *database_; }

 private:
  void begin(const std::filesystem::path& store);

  std::unique_ptr<SqliteDatabase> database_;
  std::optional<SqliteTransaction> transaction_;
};

}  // namespace tarn::evolution::catalogue
