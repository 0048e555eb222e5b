#include "catalogue/store/sqlite_database.hpp"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/file_beside.hpp"
#include "catalogue/store/write_lock.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// How many instructions of SQLite's machine pass between two calls of the progress handler.
constexpr int progressUnit = 1000;

/// The file as a URI, in which SQLite takes parameters.
std::string uriOf(const std::filesystem::path& file, const std::string& parameters) {
  static constexpr char digits[] = "0123456789ABCDEF";
  if (file == SqliteDatabase::inMemory) return "file::memory:";
  if (file == SqliteDatabase::temporary) return "file:";
  std::string uri = "file:";
  std::error_code error;
  for (const char character : std::filesystem::absolute(file, error).string()) {
    if (character == '%' || character == '?' || character == '#') {
      const auto byte = static_cast<unsigned char>(character);
      uri.append({'%', digits[byte / 16], digits[byte % 16]});
    } else {
      uri += character;
    }
  }
  return uri + "?" + parameters;
}

/// The file to which changes go first, if there is one: SQLite has it beside the file itself,
/// behind symbolic links.
std::filesystem::path writtenAheadOf(const std::filesystem::path& file) {
  std::error_code error;
  const auto behindLinks = std::filesystem::canonical(file, error);
  return beside(error ? file : behindLinks, "-wal");
}

std::uintmax_t sizeOrZero(const std::filesystem::path& file) {
  std::error_code error;
  const auto size = std::filesystem::file_size(file, error);
  return error ? 0 : size;
}

bool isOnReadOnlyMedium(const std::filesystem::path& file) {
  return access(file.c_str(), W_OK) != 0 && errno == EROFS;
}

}  // namespace

void SqliteDatabase::Close::operator()(sqlite3* handle) const noexcept {
  sqlite3_close_v2(handle);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Access access,
                               const std::filesystem::path& shownAs)
    : file_(file), shownAs_(shownAs.empty() ? file : shownAs) {
  switch (access) {
    case Access::Read:
      openForReading();
      break;
    case Access::Edit:
      open(SQLITE_OPEN_READWRITE);
      limitWork();
      break;
    case Access::Build:
      open(SQLITE_OPEN_READWRITE | (file == inMemory ? SQLITE_OPEN_MEMORY : SQLITE_OPEN_NOFOLLOW));
      run("PRAGMA journal_mode = OFF");
      run("PRAGMA synchronous = FULL");  // what is committed is safe from loss of power
      break;
  }
  if (access != Access::Build) {
    sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  }
}

void SqliteDatabase::openForReading() {
  open(SQLITE_OPEN_READONLY);
  limitWork();
  if (isWrittenAhead()) openWrittenAhead();
}

/// A file that is written ahead to needs others beside it, which can be tidied away at the end by
/// one who may write. Where nobody can write, it may be read as if it never changed, or with what
/// was written ahead by one who needs no lock.
void SqliteDatabase::openWrittenAhead() {
  if (!isOnReadOnlyMedium(file_)) {
    open(SQLITE_OPEN_READWRITE);
    limitWork();
    run("PRAGMA query_only = ON");
  } else if (sizeOrZero(writtenAheadOf(file_)) == 0) {
    open(SQLITE_OPEN_READONLY, "immutable=1");
    limitWork();
  } else {
    open(SQLITE_OPEN_READONLY, "vfs=unix-none");
    limitWork();
    run("PRAGMA locking_mode = EXCLUSIVE");  // with no file for what readers share
  }
}

void SqliteDatabase::open(int flags, const char* parameters) {
  const std::string uri = uriOf(file_, parameters);
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(
      uri.c_str(), &handle, flags | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
      nullptr);
  handle_.reset(handle);
  expect(code);
  sqlite3_busy_handler(handle, &SqliteDatabase::onBusy, this);
  for (const int option : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                           SQLITE_DBCONFIG_TRUSTED_SCHEMA}) {
    sqlite3_db_config(handle, option, 0, nullptr);
  }
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
  run("PRAGMA cell_size_check = ON");
}

void SqliteDatabase::run(const char* statements) {
  work_ = 0;
  expect(sqlite3_exec(handle_.get(), statements, nullptr, nullptr, nullptr));
}

std::int64_t SqliteDatabase::number(const char* statement) {
  SqliteStatement prepared(*this, statement);
  auto rows = prepared.query();
  return rows.next() ? rows.number(0) : 0;
}

std::string SqliteDatabase::text(const char* statement) {
  SqliteStatement prepared(*this, statement);
  auto rows = prepared.query();
  return rows.next() ? std::string(rows.bytes(0)) : std::string();
}

void SqliteDatabase::copyTo(SqliteDatabase& copy, const std::function<void(double)>& tell) {
  constexpr int pagesBetween = 256;
  const std::unique_ptr<sqlite3_backup, decltype(&sqlite3_backup_finish)> backup(
      sqlite3_backup_init(copy.handle_.get(), "main", handle_.get(), "main"),
      sqlite3_backup_finish);
  if (backup == nullptr) copy.fail(copy.lastError());
  int code = SQLITE_OK;
  while (code == SQLITE_OK) {
    if (tell) {
      const int all = sqlite3_backup_pagecount(backup.get());
      const int left = sqlite3_backup_remaining(backup.get());
      tell(all == 0 ? 0 : static_cast<double>(all - left) / all);
    }
    code = sqlite3_backup_step(backup.get(), pagesBetween);
  }
  if (code != SQLITE_DONE) copy.fail(code);
}

bool SqliteDatabase::isWrittenAhead() const {
  const auto header = headerOf(handle_.get());
  std::error_code error;
  return (header && header->isWrittenAhead) ||
         std::filesystem::exists(writtenAheadOf(file_), error);
}

void SqliteDatabase::limitWork() {
  constexpr std::uint64_t least = 1000;
  constexpr std::uint64_t bytesForUnit =
      50;  // a row takes more bytes than that allows it thousands
  const auto header = headerOf(handle_.get());
  const std::uint64_t size = (header ? header->fileSize : 0) + sizeOrZero(writtenAheadOf(file_));
  workLimit_ = static_cast<std::int64_t>(least + size / bytesForUnit);
  callOnProgress();
}

void SqliteDatabase::callOnProgress() {
  sqlite3_progress_handler(handle_.get(), progressUnit, &SqliteDatabase::onProgress, this);
}

/// Whether the statement that runs is to be ended.
int SqliteDatabase::onProgress(void* database) {
  auto& self = *static_cast<SqliteDatabase*>(database);
  if (!self.callWatch()) return 1;
  return self.workLimit_ > 0 && ++self.work_ > self.workLimit_ ? 1 : 0;
}

/// Whether to try once more to get a lock that another program holds, after some waiting.
int SqliteDatabase::onBusy(void* database, int count) {
  constexpr int milliseconds = 10;
  if (!static_cast<SqliteDatabase*>(database)->callWatch()) return 0;
  if (count >= WriteLock::waitingMilliseconds / milliseconds) return 0;
  sqlite3_sleep(milliseconds);
  return 1;
}

/// Whether it returned. No exception may pass through SQLite.
bool SqliteDatabase::callWatch() {
  try {
    if (watch_) watch_();
    return true;
  } catch (...) {
    thrownByWatch_ = std::current_exception();
    return false;
  }
}

int SqliteDatabase::lastError() const {
  return sqlite3_extended_errcode(handle_.get());
}

bool SqliteDatabase::hasMoved() const {
  int result = 0;
  sqlite3_file_control(handle_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &result);
  return result != 0;
}

bool SqliteDatabase::isDamaged() const {
  const int code = lastError() & 0xff;
  return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

void SqliteDatabase::expect(int code) const {
  if (code != SQLITE_OK) fail(code);
}

void SqliteDatabase::fail(int code) const {
  if (thrownByWatch_) std::rethrow_exception(std::exchange(thrownByWatch_, nullptr));
  const int number = handle_ == nullptr ? 0 : sqlite3_system_errno(handle_.get());
  const std::string message =
      handle_ == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(handle_.get());
  const std::string cause = number == 0 ? message : std::generic_category().message(number);
  switch (code) {
    case SQLITE_READONLY_ROLLBACK:
    case SQLITE_READONLY_RECOVERY:
      failFor(
          shownAs_,
          "holds a change that another program left unfinished, which only one can undo who may "
          "write it");
    case SQLITE_READONLY_DBMOVED:
      failFor(shownAs_, "has been replaced meanwhile");
    case SQLITE_IOERR_NOMEM:
      throw std::bad_alloc();
    default:
      break;
  }
  switch (code & 0xff) {
    case SQLITE_CORRUPT:
      failDamaged("", message);
    case SQLITE_INTERRUPT:
      failDamaged("", "its tables lead in circles");
    case SQLITE_NOTADB:
      failFor(shownAs_, "is not a catalogue store: " + message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      failFor(shownAs_, "is in use by another program");
    case SQLITE_CANTOPEN:
      failFor(shownAs_, "cannot be opened: " + cause);
    case SQLITE_READONLY:
      failFor(shownAs_, "cannot be written");
    case SQLITE_FULL:
      failFor(shownAs_, "cannot be written: " + message);
    case SQLITE_NOMEM:
      if (isSchemaBeyondMemory()) failDamaged("", "a row claims to be larger than memory");
      throw std::bad_alloc();
    default:
      failFor(shownAs_, "cannot be used: " + cause);
  }
}

/// Whether a row of the schema claims a length beyond all memory, of which SQLite says the same as
/// of want of memory: it says so always, while there is memory for other things.
bool SqliteDatabase::isSchemaBeyondMemory() const {
  constexpr std::size_t enough = 1 << 20;
  if (file_ == inMemory) return false;
  sqlite3* handle = nullptr;
  int code = sqlite3_open_v2(uriOf(file_, "").c_str(), &handle,
                             SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  const std::unique_ptr<sqlite3, Close> closing(handle);
  if (code != SQLITE_OK) return false;
  code = sqlite3_exec(handle, "SELECT 1 FROM sqlite_schema", nullptr, nullptr, nullptr);
  const std::unique_ptr<void, decltype(&sqlite3_free)> memory(sqlite3_malloc64(enough),
                                                              sqlite3_free);
  return code == SQLITE_NOMEM && memory != nullptr;
}

void SqliteDatabase::failDamaged(const std::string& place, const std::string& reason) const {
  throw CatalogueError(place, "the store is damaged: " + reason).inFile(shownAs_.string());
}

void SqliteStatement::Finalize::operator()(sqlite3_stmt* handle) const noexcept {
  sqlite3_finalize(handle);
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const char* text)
    : database_(&database) {
  sqlite3_stmt* handle = nullptr;
  database.work_ = 0;
  database.expect(sqlite3_prepare_v3(database.handle_.get(), text, -1, SQLITE_PREPARE_PERSISTENT,
                                     &handle, nullptr));
  handle_.reset(handle);
}

void SqliteStatement::bind(int parameter, const SqliteValue& value) {
  sqlite3_stmt* const handle = handle_.get();
  int code = SQLITE_OK;
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    code = sqlite3_bind_int64(handle, parameter, *number);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    code = sqlite3_bind_text64(handle, parameter, text->data(), text->size(), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
  } else if (const auto* packed = std::get_if<PackedSemVer>(&value)) {
    code = sqlite3_bind_blob(handle, parameter, packed->data(), static_cast<int>(packed->size()),
                             SQLITE_TRANSIENT);
  } else {
    code = sqlite3_bind_null(handle, parameter);
  }
  database_->expect(code);
}

bool SqliteStatement::step() {
  const int code = sqlite3_step(handle_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) database_->fail(code);
  return false;
}

void SqliteStatement::reset() noexcept {
  sqlite3_reset(handle_.get());
}

bool SqliteStatement::Rows::isNull(int column) const {
  return sqlite3_column_type(statement_->handle_.get(), column) == SQLITE_NULL;
}

bool SqliteStatement::Rows::isText(int column) const {
  return sqlite3_column_type(statement_->handle_.get(), column) == SQLITE_TEXT;
}

std::int64_t SqliteStatement::Rows::number(int column) const {
  return sqlite3_column_int64(statement_->handle_.get(), column);
}

std::string_view SqliteStatement::Rows::bytes(int column) const {
  sqlite3_stmt* const handle = statement_->handle_.get();
  const void* data =
      isText(column) ? sqlite3_column_text(handle, column) : sqlite3_column_blob(handle, column);
  if (data == nullptr) {
    // Which there is no other way to be told of.
    if ((statement_->database_->lastError() & 0xff) == SQLITE_NOMEM) throw std::bad_alloc();
    return {};
  }
  return {static_cast<const char*>(data),
          static_cast<std::size_t>(sqlite3_column_bytes(handle, column))};
}

SqliteWatch::SqliteWatch(SqliteDatabase& database, std::function<void()> watch)
    : database_(&database) {
  if (!watch) return;
  database.watch_ = std::move(watch);
  database.callOnProgress();
}

SqliteWatch::~SqliteWatch() {
  database_->watch_ = nullptr;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database, Kind kind) : database_(&database) {
  if (kind == Kind::Write) {
    database.run("BEGIN IMMEDIATE");
  } else {
    database.run("BEGIN");
    database.number("SELECT count(*) FROM sqlite_schema");  // only reading begins it
  }
}

SqliteTransaction::~SqliteTransaction() {
  if (!isOpen_) return;
  try {
    database_->run("ROLLBACK");
  } catch (...) {  // SQLite has rolled back by itself, or does when the connection is closed
  }
}

void SqliteTransaction::commit() {
  database_->run("COMMIT");
  isOpen_ = false;
}

}  // namespace tarn::evolution::catalogue
