#pragma once

#include <filesystem>

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/store_progress.hpp"

namespace tarn::evolution::catalogue {

/// Whether a hop may stand twice.
enum class RepeatedHops { Kept, Refused };

/// Adds the content of a JSON file to a store, within a transaction that the caller holds. Throws
/// CatalogueError, which names the JSON file and places in it, when that would leave the store
/// unsound, and for a repeated hop that is refused.
StoreCounts fillStore(SqliteDatabase& store, const std::filesystem::path& json,
                      RepeatedHops repeated, const StoreProgress& progress);

}  // namespace tarn::evolution::catalogue
