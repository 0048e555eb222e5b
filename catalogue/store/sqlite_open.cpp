#include "catalogue/store/sqlite_open.hpp"

#include <array>
#include <cstring>
#include <fstream>
#include <string_view>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/file_error.hpp"
#include "catalogue/store/sqlite_schema.hpp"

namespace tarn::evolution::catalogue {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t headerSize = 100;

/// The start of a file; zeros where the file ends earlier.
std::array<char, headerSize> headerOf(const std::filesystem::path& file) {
  std::array<char, headerSize> header{};
  std::ifstream(file, std::ios::binary).read(header.data(), header.size());
  return header;
}

bool beginsAsSqlite(const std::array<char, headerSize>& header) {
  return std::string_view(header.data(), header.size()).starts_with("SQLite format 3\0"sv);
}

/// Whether the database can be read at all.
bool isIntact(SqliteDatabase& database) {
  try {
    database.number("SELECT count(*) FROM sqlite_schema");
    return true;
  } catch (const CatalogueError&) {
    return false;
  }
}

void expectSqlite(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return;  // SQLite says why it cannot be read
  if (!isSqliteFile(file)) {
    failFor(file, "is not a catalogue store: it is not a SQLite database");
  }
  if (std::filesystem::file_size(file, error) < headerSize) {
    failFor(file, "the store is damaged: it ends within its header");
  }
}

}  // namespace

bool isSqliteFile(const std::filesystem::path& file) {
  return beginsAsSqlite(headerOf(file));
}

bool isStoreFile(const std::filesystem::path& file) {
  constexpr std::size_t applicationIdOffset = 68;
  const auto header = headerOf(file);
  return beginsAsSqlite(header) && std::memcmp(header.data() + applicationIdOffset, "EVOP", 4) == 0;
}

std::unique_ptr<SqliteDatabase> openStoreForReading(const std::filesystem::path& file) {
  expectSqlite(file);
  using Access = SqliteDatabase::Access;
  auto database = std::make_unique<SqliteDatabase>(file, Access::Read);
  if (SqliteSchema::current().check(*database)) return database;
  database.reset();
  SqliteSchema::current().migrate(*openStoreForEditing(file));
  return std::make_unique<SqliteDatabase>(file, Access::Read);
}

std::unique_ptr<SqliteDatabase> lockStoreForReplacement(const std::filesystem::path& file) {
  auto database = std::make_unique<SqliteDatabase>(file, SqliteDatabase::Access::Edit);
  try {
    SqliteStatement fold(*database, "PRAGMA journal_mode = DELETE");
    auto rows = fold.query();
    if (rows.next() && rows.bytes(0) != "delete") {
      failFor(file, "is in use by another program");
    }
  } catch (const CatalogueError&) {
    if (database->isBusy() || isIntact(*database)) throw;
    for (const char* suffix : {"-wal", "-shm"}) {
      std::filesystem::path beside = file;
      beside += suffix;
      std::error_code ignored;
      std::filesystem::remove(beside, ignored);
    }
    return nullptr;
  }
  database->run("BEGIN EXCLUSIVE");
  return database;
}

std::unique_ptr<SqliteDatabase> openStoreForEditing(const std::filesystem::path& file) {
  expectSqlite(file);
  auto database = std::make_unique<SqliteDatabase>(file, SqliteDatabase::Access::Edit);
  if (!SqliteSchema::current().check(*database)) SqliteSchema::current().migrate(*database);
  if (database->hasMoved()) failFor(file, "has been replaced meanwhile");
  database->run("PRAGMA journal_mode = WAL");
  database->run("PRAGMA synchronous = FULL");
  return database;
}

}  // namespace tarn::evolution::catalogue
