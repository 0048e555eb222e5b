// A hash table with open addressing and linear probing, for one writer at a time and any number of
// readers. Entries never move and are never removed. A table that is half full is copied into one
// of twice the size; the old one stays for those who are reading it. What they do not find there is
// looked up once more under the lock, before it is added.

#include "pathfinder/linking/linked_metamodel_cache.hpp"

#include <functional>
#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

/// Spreads what the hash of descriptors leaves close together.
std::size_t spread(std::size_t hash) noexcept {
  hash *= 0x9e3779b97f4a7c15U;
  return hash ^ (hash >> 32);
}

}  // namespace

void LinkedMetamodelCache::Table::insert(const Entry& entry) {
  const std::size_t mask = slots.size() - 1;
  std::size_t place = entry.hash & mask;
  while (slots[place].load(std::memory_order_relaxed) != nullptr) place = (place + 1) & mask;
  slots[place].store(&entry, std::memory_order_release);
}

LinkedMetamodelCache::LinkedMetamodelCache() {
  constexpr std::size_t firstSize = 64;
  current_ = tables_.emplace_back(std::make_unique<Table>(firstSize)).get();
}

LinkedMetamodelCache::~LinkedMetamodelCache() {
  // What links goes before what it links, lest long chains of links be destroyed recursively.
  while (!entries_.empty()) entries_.pop_back();
}

const LinkedMetamodels* LinkedMetamodelCache::find(const Metamodel& metamodel) const {
  return find(metamodel, spread(std::hash<Metamodel>()(metamodel)));
}

const LinkedMetamodels* LinkedMetamodelCache::find(const Metamodel& metamodel,
                                                   std::size_t hash) const {
  const Table& table = *current_.load(std::memory_order_acquire);
  const std::size_t mask = table.slots.size() - 1;
  for (std::size_t place = hash & mask;; place = (place + 1) & mask) {
    const Entry* entry = table.slots[place].load(std::memory_order_acquire);
    if (entry == nullptr) return nullptr;
    if (entry->hash == hash && entry->metamodel == metamodel) return &entry->list;
  }
}

const LinkedMetamodels& LinkedMetamodelCache::add(const Metamodel& metamodel,
                                                  LinkedMetamodels&& list) {
  const std::size_t hash = spread(std::hash<Metamodel>()(metamodel));
  const std::lock_guard lock(adding_);
  if (const LinkedMetamodels* known = find(metamodel, hash)) return *known;
  if (2 * (entries_.size() + 1) > tables_.back()->slots.size()) grow();
  const Entry& entry = entries_.emplace_back(Entry{metamodel, hash, std::move(list)});
  tables_.back()->insert(entry);
  return entry.list;
}

void LinkedMetamodelCache::grow() {
  auto larger = std::make_unique<Table>(2 * tables_.back()->slots.size());
  for (const Entry& entry : entries_) larger->insert(entry);
  tables_.push_back(std::move(larger));
  current_.store(tables_.back().get(), std::memory_order_release);
}

}  // namespace tarn::evolution::pathfinder
