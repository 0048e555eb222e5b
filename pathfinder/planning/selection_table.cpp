// Interned rows: equal selections have one number. A hash table with open addressing holds numbers;
// the rows stand one after the other.

#include "pathfinder/planning/selection_table.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

std::uint32_t hashOf(SelectionView selection) {
  std::uint64_t hash = 0;
  for (const VersionIndex version : selection) {
    hash = (hash ^ version) * 0x9e3779b97f4a7c15U;
    hash ^= hash >> 29;
  }
  return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

}  // namespace

SelectionIndex SelectionTable::intern(SelectionView selection) {
  const std::uint32_t hash = hashOf(selection);
  std::size_t slot = slotOf(selection, hash);
  if (slots_[slot].next != 0) return slots_[slot].next - 1;
  if (2 * (rows_.size() + std::size_t{1}) > slots_.size()) {
    grow();
    slot = slotOf(selection, hash);
  }
  const SelectionIndex added = rows_.add(selection);
  slots_[slot] = {hash, added + 1};
  return added;
}

SelectionIndex SelectionTable::find(SelectionView selection) const {
  const Slot& slot = slots_[slotOf(selection, hashOf(selection))];
  return slot.next == 0 ? SearchSpace::none : slot.next - 1;
}

/// Where the selection stands, or is to stand.
std::size_t SelectionTable::slotOf(SelectionView selection, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    const auto& [known, next] = slots_[slot];
    if (next == 0) return slot;
    if (known == hash && std::equal(selection.begin(), selection.end(), rows_[next - 1].begin())) {
      return slot;
    }
  }
}

void SelectionTable::grow() {
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& entry : old) {
    if (entry.next == 0) continue;
    std::size_t slot = entry.hash & mask;
    while (slots_[slot].next != 0) slot = (slot + 1) & mask;
    slots_[slot] = entry;
  }
}

}  // namespace tarn::evolution::pathfinder
