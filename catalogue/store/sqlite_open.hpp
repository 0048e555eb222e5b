#pragma once

#include <filesystem>
#include <memory>

#include "catalogue/store/sqlite_database.hpp"

/// Opening stores. All throw CatalogueError, which names the file, when it is not a store of the
/// present form and cannot be brought to it.
namespace tarn::evolution::catalogue {

/// Whether a file begins as every SQLite database does. False for one that cannot be read.
bool isSqliteFile(const std::filesystem::path& file);

/// Whether a file is marked as a store, damaged or not.
bool isStoreFile(const std::filesystem::path& file);

std::unique_ptr<SqliteDatabase> openStoreForReading(const std::filesystem::path& file);

/// Changes are written ahead, to a second file beside the store, so that who reads and who writes
/// do not wait for one another.
std::unique_ptr<SqliteDatabase> openStoreForEditing(const std::filesystem::path& file);

/// Takes a store, which is about to be replaced by another file, away from everybody else for as
/// long as the result lives, and brings all that belongs to it into its one file. Throws
/// CatalogueError when others have it open. Null, and nothing to be waited for, when the store is
/// damaged.
std::unique_ptr<SqliteDatabase> lockStoreForReplacement(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
