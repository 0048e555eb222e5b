// Entries that are taken back leave no trace in a hash map as long as it has not grown, which may
// change its order. So once it would have to, a copy grows in its place; that costs no more than
// growing does.
#include "pathfinder/values/entry_insertion.hpp"

#include <algorithm>
#include <cstddef>

namespace tarn::evolution::pathfinder {

namespace {

bool isFull(const EntryInsertion::Map& map) {
  const double room = static_cast<double>(map.bucket_count()) * map.max_load_factor();
  return static_cast<double>(map.size() + 1) > room;
}

}  // namespace

const std::shared_ptr<LinkedMetamodel>& EntryInsertion::add(
    const std::u16string& name, const std::shared_ptr<LinkedMetamodel>& linked) {
  if (!grown_ && isFull(map_)) {
    if (const auto held = map_.find(name); held != map_.end()) return held->second;
    grown_ = map_;
  }
  if (grown_) return grown_->try_emplace(name, linked).first->second;
  constexpr std::size_t few = 16;
  if (added_.size() == added_.capacity()) added_.reserve(std::max(few, 2 * added_.size()));
  const auto [entry, isNew] = map_.try_emplace(name, linked);
  if (isNew) added_.push_back(&entry->first);
  return entry->second;
}

void EntryInsertion::keep() noexcept {
  if (grown_) map_.swap(*grown_);
  grown_.reset();
  added_.clear();
}

EntryInsertion::~EntryInsertion() {
  for (const std::u16string* name : added_) map_.erase(map_.find(*name));
}

}  // namespace tarn::evolution::pathfinder
