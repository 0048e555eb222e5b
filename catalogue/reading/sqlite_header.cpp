#include "catalogue/reading/sqlite_header.hpp"

#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>

#include "catalogue/reading/file_error.hpp"

namespace tarn::evolution::catalogue {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t headerSize = 100;
constexpr std::size_t writeVersionOffset = 18;  // the read version follows; 2 is for WAL
constexpr std::size_t applicationIdOffset = 68;

SqliteHeader parse(std::string_view bytes, std::uint64_t fileSize) {
  SqliteHeader result;
  result.fileSize = fileSize;
  result.isWhole = fileSize >= headerSize;
  result.isDatabase = beginsAsDatabase(bytes);
  result.isStore = bytes.substr(applicationIdOffset).starts_with("EVOP"sv);
  result.isWrittenAhead = bytes.substr(writeVersionOffset, 2).find('\2') != std::string_view::npos;
  return result;
}

}  // namespace

std::optional<SqliteHeader> headerOf(sqlite3* connection) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return std::nullopt;
  std::array<char, headerSize> bytes{};
  sqlite3_int64 size = 0;
  const int code = file->pMethods->xRead(file, bytes.data(), headerSize, 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ) return std::nullopt;
  if (file->pMethods->xFileSize(file, &size) != SQLITE_OK) return std::nullopt;
  return parse({bytes.data(), bytes.size()}, static_cast<std::uint64_t>(size));
}

std::optional<SqliteHeader> headerOf(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
  const auto absolute = std::filesystem::absolute(file, error);
  if (error) return std::nullopt;
  sqlite3* handle = nullptr;
  const int code =
      sqlite3_open_v2(absolute.c_str(), &handle,
                      SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)> closing(handle, sqlite3_close_v2);
  if ((code & 0xff) == SQLITE_NOMEM) throw std::bad_alloc();
  const int cause = sqlite3_system_errno(handle);
  if ((code & 0xff) == SQLITE_CANTOPEN) {
    if (cause == ENOENT)
      return std::nullopt;  // such as one that is removed, but still has a descriptor
    failFor(file, "cannot be opened: " + std::generic_category().message(cause));
  }
  const auto header = code == SQLITE_OK ? headerOf(handle) : std::nullopt;
  if (!header) failFor(file, "cannot be read: " + std::generic_category().message(EIO));
  return header;
}

bool beginsAsDatabase(std::string_view bytes) {
  return bytes.starts_with("SQLite format 3\0"sv);
}

bool isDatabase(const std::filesystem::path& file) {
  const auto header = headerOf(file);
  return header && header->isDatabase;
}

void expectDatabase(const std::filesystem::path& file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status)) failFor(file, "cannot be opened: " + error.message());
  if (std::filesystem::is_directory(status)) failFor(file, "is a directory, not a file");
  if (!std::filesystem::is_regular_file(status)) {
    failFor(file, "is no regular file; a store is opened by the name of its file");
  }
  const auto header = headerOf(file);
  if (!header || !header->isDatabase)
    failFor(file, "is not a catalogue store: it is not a SQLite database");
  if (!header->isWhole) failFor(file, "the store is damaged: it ends within its header");
}

}  // namespace tarn::evolution::catalogue
