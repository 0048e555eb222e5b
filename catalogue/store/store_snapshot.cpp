#include "catalogue/store/store_snapshot.hpp"

#include <sqlite3.h>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/locked_store.hpp"

namespace tarn::evolution::catalogue {

namespace {

bool isLeftUnfinished(const SqliteDatabase* database) {
  if (database == nullptr) return false;
  const int code = database->lastError();
  return code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY;
}

}  // namespace

StoreSnapshot::StoreSnapshot(const std::filesystem::path& store, const SqliteSchema& form) {
  expectDatabase(store);
  try {
    begin(store);
  } catch (const CatalogueError&) {
    if (!isLeftUnfinished(database_.get()) || !LockedStore::undoUnfinished(store)) throw;
    begin(store);
  }
  form.check(*database_);
}

void StoreSnapshot::begin(const std::filesystem::path& store) {
  transaction_.reset();
  database_ = std::make_unique<SqliteDatabase>(store, SqliteDatabase::Access::Read);
  transaction_.emplace(*database_, SqliteTransaction::Kind::Read);
}

}  // namespace tarn::evolution::catalogue
