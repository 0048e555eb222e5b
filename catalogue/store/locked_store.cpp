#include "catalogue/store/locked_store.hpp"

#include <sqlite3.h>
#include <unistd.h>

#include <chrono>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/store/file_beside.hpp"
#include "catalogue/store/write_lock.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr const char* anyRead = "SELECT count(*) FROM sqlite_schema";

}  // namespace

LockedStore::LockedStore(const std::filesystem::path& file, const std::filesystem::path& shownAs)
    : file_(file), shownAs_(shownAs) {
  open();
}

void LockedStore::open() {
  database_ = std::make_unique<SqliteDatabase>(file_, SqliteDatabase::Access::Edit, shownAs_);
}

void LockedStore::lock(const std::function<void()>& whileWaiting) {
  using namespace std::chrono;
  const auto end = steady_clock::now() + milliseconds(WriteLock::waitingMilliseconds);
  begin(whileWaiting);
  // An unfinished change that was undone may have brought this to light, or another program has
  // been quicker.
  while (database_->text("PRAGMA journal_mode") == "wal") {
    if (steady_clock::now() > end) failFor(shownAs_, "is in use by another program");
    database_->run("ROLLBACK");
    begin(whileWaiting);
  }
  expectInPlace();
}

void LockedStore::begin(const std::function<void()>& whileWaiting) {
  if (database_->isWrittenAhead()) {
    try {
      bringTogether(whileWaiting);
    } catch (const CatalogueError&) {
      if (!removeEmptyBeside()) throw;
      open();
      bringTogether(whileWaiting);
    }
  }
  const SqliteWatch watch(*database_, whileWaiting);
  database_->run("BEGIN IMMEDIATE");
}

/// Gets the file to itself, without a file for what is shared with others.
void LockedStore::bringTogether(const std::function<void()>& whileWaiting) {
  const SqliteWatch watch(*database_, whileWaiting);
  database_->run("PRAGMA locking_mode = EXCLUSIVE");
  database_->number(anyRead);
  if (database_->text("PRAGMA journal_mode = DELETE") != "delete") {
    failFor(shownAs_, "is in use by another program");
  }
  if (database_->isWrittenAhead()) {
    failFor(shownAs_, "cannot be written: the file that was written ahead to cannot be removed");
  }
  database_->run("PRAGMA locking_mode = NORMAL");
  database_->number(anyRead);
}

/// What a reader with fewer rights left beside the file cannot be written, but holds nothing. While
/// the file is locked, as it is until it is closed, it is nobody's. Whether it is gone.
bool LockedStore::removeEmptyBeside() {
  const auto writtenAhead = beside(file_, "-wal");
  std::error_code error;
  if ((database_->lastError() & 0xff) != SQLITE_READONLY) return false;
  if (std::filesystem::file_size(writtenAhead, error) != 0 || error) return false;
  unlink(beside(file_, "-shm").c_str());
  return unlink(writtenAhead.c_str()) == 0;
}

void LockedStore::expectInPlace() const {
  if (database_->hasMoved()) failFor(shownAs_, "has been replaced meanwhile");
}

bool LockedStore::undoUnfinished(const std::filesystem::path& store) {
  try {
    const auto file = std::filesystem::canonical(store);
    const WriteLock lock(file, store, {});
    SqliteDatabase(file, SqliteDatabase::Access::Edit, store).number(anyRead);
    return true;
  } catch (const CatalogueError&) {
  } catch (const std::filesystem::filesystem_error&) {
  }
  return false;
}

}  // namespace tarn::evolution::catalogue
