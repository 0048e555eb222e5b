#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "catalogue/store/sqlite_schema.hpp"

namespace test {

/// A folder for this process, in memory where the system has that.
std::filesystem::path quickFolder(const std::string& name);

/// The files of a folder: their contents by name.
using Disk = std::map<std::string, std::string>;

Disk readDisk(const std::filesystem::path& folder);

/// Makes the folder hold these files and nothing else.
void writeDisk(const Disk& disk, const std::filesystem::path& folder);

/// All that a database holds, as SQLite alone reads it, or the text of another file. Says so if it
/// cannot be read, is damaged, or not there.
std::string contentOf(const std::filesystem::path& file);

/// Something that is done to catalogue files.
struct StoreOperation {
  std::string name;
  Disk disk;         ///< what is there before
  std::string file;  ///< which one it changes; empty when none
  std::function<std::string(const std::filesystem::path& folder)> run;  ///< gives what it read
};

/// Every operation that takes the path of a catalogue file, on a store made from JSON, a store with
/// changes that are only in SQLite's file beside it, and JSON. Large catalogues take SQLite several
/// levels of pages.
enum class CatalogueSize { Small, Large };
std::vector<StoreOperation> storeOperations(CatalogueSize size = CatalogueSize::Large);

/// The first and the second version of a form of stores, which has nothing to do with catalogues.
const tarn::evolution::catalogue::SqliteSchema& formerForm();
const tarn::evolution::catalogue::SqliteSchema& laterForm();

}  // namespace test
