#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// The positions of the versions of a store that `findCycle` finds.
std::vector<std::int64_t> findStoredCycle(SqliteDatabase& database);

}  // namespace tarn::evolution::catalogue
