#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pathfinder/planning/row_store.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A selection of a table. Equal selections have equal numbers, given from 0 on.
using SelectionIndex = std::uint32_t;

/// One version for each name, as it stands in a table.
using SelectionView = std::span<const VersionIndex>;

/// The selections of versions that a search has met.
class SelectionTable {
 public:
  explicit SelectionTable(std::size_t names) : rows_(names), slots_(16) {}

  /// The number of a selection, which is added if it is new.
  SelectionIndex intern(SelectionView selection);

  /// The number of a selection; `SearchSpace::none` when the table does not hold it.
  SelectionIndex find(SelectionView selection) const;

  /// Valid as long as the table.
  SelectionView operator[](SelectionIndex index) const { return rows_[index]; }

  std::uint32_t size() const { return rows_.size(); }
  std::size_t bytes() const { return rows_.bytes() + slots_.capacity() * sizeof(Slot); }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t next = 0;  ///< the selection's number plus one; 0 for a free slot
  };

  std::size_t slotOf(SelectionView selection, std::uint32_t hash) const;
  void grow();

  RowStore<VersionIndex> rows_;
  std::vector<Slot> slots_;  // a hash table with open addressing
};

}  // namespace tarn::evolution::pathfinder
