#include "catalogue/store/sqlite_database.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/file_error.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// How many instructions of SQLite's machine pass between two calls of the progress handler.
constexpr int progressUnit = 1000;

/// How long to wait for a lock that another program holds.
constexpr int busyMilliseconds = 5000;

/// The file as a URI, in which SQLite takes parameters.
std::string uriOf(const std::filesystem::path& file, const std::string& parameters) {
  static constexpr char digits[] = "0123456789ABCDEF";
  if (file == SqliteDatabase::inMemory) return "file::memory:";
  std::string uri = "file:";
  for (const char character : std::filesystem::absolute(file).string()) {
    if (character == '%' || character == '?' || character == '#') {
      const auto byte = static_cast<unsigned char>(character);
      uri.append({'%', digits[byte / 16], digits[byte % 16]});
    } else {
      uri += character;
    }
  }
  return uri + "?" + parameters;
}

/// Whether there is memory for what a row of the file can hold.
bool hasMemoryFor(const std::filesystem::path& file) {
  constexpr std::uintmax_t mostOfOneRow = 64 << 20;
  std::error_code error;
  const auto size = std::filesystem::file_size(file, error);
  const auto wanted = static_cast<std::size_t>(error ? 1 : std::min(size, mostOfOneRow));
  return std::unique_ptr<char[]>(new (std::nothrow) char[wanted]) != nullptr;
}

bool isEmptyOrMissing(const std::filesystem::path& file) {
  std::error_code error;
  const auto size = std::filesystem::file_size(file, error);
  return error || size == 0;
}

}  // namespace

void SqliteDatabase::Close::operator()(sqlite3* handle) const noexcept {
  sqlite3_close_v2(handle);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Access access) : file_(file) {
  switch (access) {
    case Access::Read:
      openForReading();
      break;
    case Access::Edit:
      open(SQLITE_OPEN_READWRITE, false);
      break;
    case Access::Create:
      open(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, false);
      run("PRAGMA journal_mode = MEMORY");
      run("PRAGMA synchronous = OFF");
      break;
  }
}

/// A file that is written ahead to needs a second one beside it. Where none can be made, nobody can
/// be writing either, and the file may be read as if it never changed.
void SqliteDatabase::openForReading() {
  try {
    open(SQLITE_OPEN_READWRITE, false);  // so that the file beside can be tidied away at the end
    limitWork();
    run("PRAGMA query_only = ON");
    number("SELECT count(*) FROM sqlite_schema");
  } catch (const CatalogueError&) {
    const int code = handle_ ? sqlite3_errcode(handle_.get()) & 0xff : SQLITE_CANTOPEN;
    const bool isUnwritable = code == SQLITE_CANTOPEN || code == SQLITE_READONLY;
    std::filesystem::path writtenAhead = file_;
    writtenAhead += "-wal";
    if (!isUnwritable || !isEmptyOrMissing(writtenAhead)) throw;
    open(SQLITE_OPEN_READONLY, true);
    limitWork();
  }
}

void SqliteDatabase::open(int flags, bool isImmutable) {
  if (std::filesystem::is_directory(file_)) {
    failFor(file_, "is a directory, not a file");
  }
  const std::string uri = uriOf(file_, isImmutable ? "immutable=1" : "");
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(
      uri.c_str(), &handle, flags | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
      nullptr);
  handle_.reset(handle);
  expect(code);
  sqlite3_busy_timeout(handle, busyMilliseconds);
  for (const int option : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                           SQLITE_DBCONFIG_TRUSTED_SCHEMA}) {
    sqlite3_db_config(handle, option, 0, nullptr);
  }
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
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

void SqliteDatabase::limitWork() {
  constexpr std::int64_t least = 1000;
  constexpr std::int64_t bytesForUnit = 50;  // a row takes more bytes than that allows it thousands
  std::error_code error;
  const auto size = std::filesystem::file_size(file_, error);
  workLimit_ = least + (error ? 0 : static_cast<std::int64_t>(size) / bytesForUnit);
  callOnProgress();
}

void SqliteDatabase::callOnProgress() {
  sqlite3_progress_handler(handle_.get(), progressUnit, &SqliteDatabase::onProgress, this);
}

/// Whether the statement that runs is to be ended. No exception may pass through SQLite.
int SqliteDatabase::onProgress(void* database) {
  auto& self = *static_cast<SqliteDatabase*>(database);
  try {
    if (self.watch_) self.watch_();
  } catch (...) {
    self.thrownByWatch_ = std::current_exception();
    return 1;
  }
  return self.workLimit_ > 0 && ++self.work_ > self.workLimit_ ? 1 : 0;
}

bool SqliteDatabase::isBusy() const {
  return (sqlite3_errcode(handle_.get()) & 0xff) == SQLITE_BUSY;
}

bool SqliteDatabase::hasMoved() const {
  int result = 0;
  sqlite3_file_control(handle_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &result);
  return result != 0;
}

void SqliteDatabase::expect(int code) const {
  if (code != SQLITE_OK) fail(code);
}

void SqliteDatabase::fail(int code) const {
  const std::string message =
      handle_ == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(handle_.get());
  switch (code & 0xff) {
    case SQLITE_CORRUPT:
      failDamaged("", message);
    case SQLITE_INTERRUPT:
      if (thrownByWatch_) std::rethrow_exception(std::exchange(thrownByWatch_, nullptr));
      failDamaged("", "its tables lead in circles");
    case SQLITE_NOTADB:
      failFor(file_, "is not a catalogue store: " + message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      failFor(file_, "is in use by another program");
    case SQLITE_CANTOPEN: {
      const int error = handle_ == nullptr ? 0 : sqlite3_system_errno(handle_.get());
      failFor(file_, "cannot be opened: " +
                         (error == 0 ? message : std::generic_category().message(error)));
    }
    case SQLITE_READONLY:
      failFor(file_, "cannot be written");
    case SQLITE_NOMEM:
      // That is also what SQLite says of a damaged row that claims a length beyond all memory.
      if (hasMemoryFor(file_)) failDamaged("", "a row claims to be larger than memory");
      throw std::bad_alloc();
    default:
      failFor(file_, "cannot be used: " + message);
  }
}

void SqliteDatabase::failDamaged(const std::string& place, const std::string& reason) const {
  throw CatalogueError(place, "the store is damaged: " + reason).inFile(file_.string());
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

void SqliteStatement::start() {
  database_->work_ = 0;
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
  if (data == nullptr) return {};
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
