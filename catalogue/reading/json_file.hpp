#pragma once

#include <filesystem>
#include <istream>
#include <memory>

#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

/// Whether a file is read from its beginning to its end once: a pipe, a terminal or another device.
bool isReadOnce(const std::filesystem::path& file);

/// Opens a JSON file, which may be one that is read once, for reading; what goes wrong while it is
/// read, the stream throws as std::ios_base::failure. Throws CatalogueError, which does not name
/// the file, when it cannot be opened, and when it is a SQLite database.
std::unique_ptr<std::istream> openJsonFile(const std::filesystem::path& file);

/// Throws that a file cannot be read.
[[noreturn]] void failToRead(const std::ios_base::failure& failure);

/// What `read` returns for the stream of a JSON file. A CatalogueError that names no file, or that
/// it cannot be opened or read, is thrown on with the name of this one.
template <class Read>
auto readJsonFile(const std::filesystem::path& file, const Read& read) {
  try {
    const auto in = openJsonFile(file);
    try {
      return read(*in);
    } catch (const std::ios_base::failure& failure) {
      failToRead(failure);
    }
  } catch (const CatalogueError& error) {
    if (!error.file().empty()) throw;
    throw error.inFile(file.string());
  }
}

}  // namespace tarn::evolution::catalogue
