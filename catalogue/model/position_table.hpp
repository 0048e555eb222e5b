#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "catalogue/model/version_slots.hpp"

namespace tarn::evolution::catalogue {

/// Finds the positions of rows by the number of a name, and among those of one name by a key.
class PositionTable {
 public:
  using Position = std::uint32_t;

  struct Entry {
    NameNumber name;
    std::uint32_t key;
    Position position;
  };

  /// Takes entries in any order; all names are below `names`.
  PositionTable(std::vector<Entry> entries, std::size_t names);

  /// Those of a name, which may be `nothing`, by key; those of one key ascending.
  std::span<const Position> of(NameNumber name) const;

  /// Those of one key, ascending, by binary search.
  std::span<const Position> at(NameNumber name, std::uint32_t key) const;

 private:
  std::vector<std::uint32_t> keys_;
  std::vector<Position> positions_;
  std::vector<std::size_t> ends_;  // of each name, where the next one begins
};

}  // namespace tarn::evolution::catalogue
