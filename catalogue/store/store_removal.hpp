#pragma once

#include <vector>

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/store_editing.hpp"

namespace tarn::evolution::catalogue {

/// Removes versions and hops from a store as `removeFromStore` says, within a transaction that the
/// caller holds and rolls back if there are obstacles.
RemovalResult removeRows(SqliteDatabase& store, const std::vector<RemovalChoice>& choices);

}  // namespace tarn::evolution::catalogue
