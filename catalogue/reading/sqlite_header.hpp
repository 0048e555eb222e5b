#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

struct sqlite3;

/// What kind of file a file is, told without disturbing anybody who has it open.
///
/// When a process closes any descriptor of a file, the system drops all locks that the process
/// holds on it, those of its open SQLite connections included. So nobody but SQLite opens a
/// database: its beginning, too, is read through SQLite's own handle, which takes no lock and lets
/// none go.
namespace tarn::evolution::catalogue {

/// What stands in the header of a database, the first 100 bytes of its file.
struct SqliteHeader {
  bool isDatabase = false;      ///< whether it begins as one; nothing else has a meaning otherwise
  bool isWhole = false;         ///< whether the file does not end within it
  bool isStore = false;         ///< whether its application ID is that of stores
  bool isWrittenAhead = false;  ///< whether changes go to a second file first (SQLite's WAL mode)
  std::uint64_t fileSize = 0;   ///< in bytes
};

/// Of the database that a connection has open. Throws std::bad_alloc; nothing for what cannot be
/// read.
std::optional<SqliteHeader> headerOf(sqlite3* connection);

/// Of a regular file; nothing for all else, which SQLite is never given, and where there is none.
/// Throws CatalogueError, which names the file, when it cannot be opened or read.
std::optional<SqliteHeader> headerOf(const std::filesystem::path& file);

/// Whether these bytes are the beginning of a SQLite database.
bool beginsAsDatabase(std::string_view bytes);

/// Whether a file begins as every SQLite database does.
bool isDatabase(const std::filesystem::path& file);

/// Throws CatalogueError, which names the file, when it is not there, or is no database, or only
/// the beginning of one.
void expectDatabase(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
