#include "catalogue/reading/json_file.hpp"

#include <cerrno>
#include <system_error>

#include "catalogue/reading/sqlite_header.hpp"

namespace tarn::evolution::catalogue {

std::ifstream openJsonFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) {
    throw CatalogueError("", "is a directory, not a file");
  }
  if (isDatabase(file)) {
    throw CatalogueError("", "is a SQLite database, not a JSON catalogue");
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    throw CatalogueError("", "cannot be opened: " + std::generic_category().message(errno));
  }
  in.exceptions(std::ios::badbit);
  return in;
}

void failToRead(const std::ios_base::failure& failure) {
  throw CatalogueError("", "cannot be read: " + failure.code().message());
}

}  // namespace tarn::evolution::catalogue
