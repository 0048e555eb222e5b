#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/store_editing.hpp"

namespace tarn::evolution::catalogue {

class SqliteReader;

/// Removes versions from a store as `removeFromStore` says, within a transaction that the caller
/// holds and rolls back if there are obstacles.
class StoreRemoval {
 public:
  explicit StoreRemoval(SqliteDatabase& store) : store_(store) {}

  RemovalResult run(const std::vector<RemovalChoice>& choices);

 private:
  void choose(const RemovalChoice& choice);
  std::uint64_t removeHop(const RemovalChoice& choice);
  /// A dependency's row: its metamodel and its place among that one's dependencies.
  using Place = std::pair<std::int64_t, std::int64_t>;

  void collectObstacles(RemovalResult& result);
  std::vector<Place> findOtherObstacles(SqliteReader& reader);
  void markOrders();
  StoreCounts remove();

  SqliteDatabase& store_;
};

}  // namespace tarn::evolution::catalogue
