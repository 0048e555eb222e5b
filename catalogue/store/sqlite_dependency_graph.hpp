#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// The positions of metamodels of a store of which each has a version of the next one, and the last
/// one a version of the first, among the candidates of its dependencies; empty when there is no
/// such cycle.
///
/// The same cycle as `findDependencyCycle` finds in the same content.
std::vector<std::int64_t> findStoredCycle(SqliteDatabase& database);

}  // namespace tarn::evolution::catalogue
