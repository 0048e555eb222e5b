#pragma once

#include <filesystem>

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/store_editing.hpp"

namespace tarn::evolution::catalogue {

/// Rewrites rows of a store as `changeStore` says, within a transaction that the caller holds.
ChangeResult rewriteRows(SqliteDatabase& store, const std::filesystem::path& json,
                         const StoreProgress& progress);

}  // namespace tarn::evolution::catalogue
