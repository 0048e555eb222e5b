#pragma once

#include <cstdint>

#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// Throws CatalogueError for the first way in which a store has become unsound, as `Catalogue`
/// defines it, with the metamodels and hops from these positions on, which are new. Says what
/// `validate` says of the same content; places count from the first new metamodel and hop.
///
/// Takes memory for the graph of the versions, about a hundred bytes for each of them.
void validateAdded(SqliteDatabase& database, std::int64_t firstMetamodel, std::int64_t firstHop);

/// Throws CatalogueError, with a place that counts from the first new hop, for the first hop from
/// that position on that stands in the store already: a catalogue may hold a hop twice, but to add
/// it once more is a mistake, the more so where one of both is expensive.
void expectNewHops(SqliteDatabase& database, std::int64_t firstHop);

}  // namespace tarn::evolution::catalogue
