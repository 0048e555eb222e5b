#pragma once

#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/store/store_editing.hpp"

namespace tarn::evolution::catalogue {

/// Removes versions from a store as `removeFromStore` says, within a transaction that the caller
/// holds and rolls back if there are obstacles.
class StoreRemoval {
 public:
  explicit StoreRemoval(SqliteDatabase& store) : store_(store) {}

  RemovalResult run(const std::vector<RemovalChoice>& choices);

 private:
  void choose(const RemovalChoice& choice);
  void collectObstacles(RemovalResult& result);
  StoreCounts remove();

  SqliteDatabase& store_;
};

}  // namespace tarn::evolution::catalogue
