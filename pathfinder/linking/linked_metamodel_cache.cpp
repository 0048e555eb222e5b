// A hash table with open addressing and linear probing, for one writer at a time and any number of
// readers. Entries never move and are never removed. A table that is half full is copied into one
// of twice the size; the old one stays for those who are reading it. What they do not find there is
// looked up once more under the lock, before it is added.

#include "pathfinder/linking/linked_metamodel_cache.hpp"

#include <algorithm>
#include <functional>
#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

/// Spreads what the hash of descriptors leaves close together.
std::size_t spread(std::size_t hash) noexcept {
  hash *= 0x9e3779b97f4a7c15U;
  return hash ^ (hash >> 32);
}

const LinkedMetamodel* linkFor(const LinkedMetamodel& linked, const Dependency& dependency) {
  const auto link = linked.linkedMetamodels.find(dependency.name);
  return link == linked.linkedMetamodels.end() ? nullptr : link->second.get();
}

/// Of the descriptor and what is linked for its dependencies.
std::size_t hashOfDirectLinks(const LinkedMetamodel& linked) {
  std::size_t hash = std::hash<Metamodel>()(linked);
  for (const Dependency& dependency : linked.dependencies) {
    hash = spread(hash ^ std::hash<const LinkedMetamodel*>()(linkFor(linked, dependency)));
  }
  return hash;
}

bool haveEqualDirectLinks(const LinkedMetamodel& left, const LinkedMetamodel& right) {
  const auto& dependencies = left.dependencies;
  return std::all_of(dependencies.begin(), dependencies.end(), [&](const Dependency& dependency) {
    return linkFor(left, dependency) == linkFor(right, dependency);
  });
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
  while (!alone_.empty()) alone_.pop_back();
  while (!entries_.empty()) entries_.pop_back();
}

const LinkedMetamodels* LinkedMetamodelCache::find(const Metamodel& metamodel) const {
  const Entry* entry = find(metamodel, spread(std::hash<Metamodel>()(metamodel)));
  return entry == nullptr ? nullptr : &entry->list;
}

const ResolvedRequirements& LinkedMetamodelCache::requirementsOf(const Metamodel& metamodel) const {
  return find(metamodel, spread(std::hash<Metamodel>()(metamodel)))->requirements;
}

const LinkedMetamodelCache::Entry* LinkedMetamodelCache::find(const Metamodel& metamodel,
                                                              std::size_t hash) const {
  const Table& table = *current_.load(std::memory_order_acquire);
  const std::size_t mask = table.slots.size() - 1;
  for (std::size_t place = hash & mask;; place = (place + 1) & mask) {
    const Entry* entry = table.slots[place].load(std::memory_order_acquire);
    if (entry == nullptr) return nullptr;
    if (entry->hash == hash && entry->metamodel == metamodel) return entry;
  }
}

const LinkedMetamodels& LinkedMetamodelCache::add(const Metamodel& metamodel,
                                                  LinkedMetamodels&& list,
                                                  ResolvedRequirements&& requirements) {
  const std::size_t hash = spread(std::hash<Metamodel>()(metamodel));
  const std::lock_guard lock(adding_);
  if (const Entry* known = find(metamodel, hash)) return known->list;
  for (auto& linked : list) {
    if (alone_.empty()) break;
    if (auto known = findAloneLocked(*linked)) linked = std::move(known);
  }
  if (2 * (entries_.size() + 1) > tables_.back()->slots.size()) grow();
  const Entry& entry =
      entries_.emplace_back(Entry{metamodel, hash, std::move(list), std::move(requirements)});
  tables_.back()->insert(entry);
  return entry.list;
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCache::findAlone(const LinkedMetamodel& linked) {
  if (!isAnyAlone_.load(std::memory_order_acquire)) return nullptr;
  const std::lock_guard lock(adding_);
  return findAloneLocked(linked);
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCache::findEqual(const LinkedMetamodel& linked) {
  const std::lock_guard lock(adding_);
  return findEqualLocked(linked);
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCache::addAlone(
    const std::shared_ptr<LinkedMetamodel>& linked) {
  const std::lock_guard lock(adding_);
  if (auto known = findEqualLocked(*linked)) return known;
  alone_.push_back(linked);
  aloneByHash_.emplace(hashOfDirectLinks(*linked), &alone_.back());
  isAnyAlone_.store(true, std::memory_order_release);
  return linked;
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCache::findEqualLocked(
    const LinkedMetamodel& linked) const {
  if (const LinkedMetamodels* list = find(linked)) {
    const auto equal = std::find_if(list->begin(), list->end(), [&](const auto& other) {
      return haveEqualDirectLinks(*other, linked);
    });
    if (equal != list->end()) return *equal;
  }
  return findAloneLocked(linked);
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCache::findAloneLocked(
    const LinkedMetamodel& linked) const {
  const auto [begin, end] = aloneByHash_.equal_range(hashOfDirectLinks(linked));
  const auto equal = std::find_if(begin, end, [&](const auto& entry) {
    const LinkedMetamodel& other = **entry.second;
    return static_cast<const Metamodel&>(other) == static_cast<const Metamodel&>(linked) &&
           haveEqualDirectLinks(other, linked);
  });
  return equal == end ? nullptr : *equal->second;
}

void LinkedMetamodelCache::grow() {
  auto larger = std::make_unique<Table>(2 * tables_.back()->slots.size());
  for (const Entry& entry : entries_) larger->insert(entry);
  tables_.push_back(std::move(larger));
  current_.store(tables_.back().get(), std::memory_order_release);
}

}  // namespace tarn::evolution::pathfinder
