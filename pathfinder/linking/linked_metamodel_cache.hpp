#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "pathfinder/linked_metamodel.hpp"
#include "pathfinder/linking/requirements.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::pathfinder {

using LinkedMetamodels = std::vector<std::shared_ptr<LinkedMetamodel>>;

/// The linked metamodels created so far, by descriptor. Only ever added to: a list stays where it
/// is, unchanged, for the cache's lifetime.
///
/// Every operation may be called from any thread. Looking up takes no lock and writes nothing, so
/// that readers do not disturb one another; adding takes one.
class LinkedMetamodelCache {
 public:
  LinkedMetamodelCache();
  ~LinkedMetamodelCache();
  LinkedMetamodelCache(const LinkedMetamodelCache&) = delete;
  LinkedMetamodelCache& operator=(const LinkedMetamodelCache&) = delete;

  /// The list of a descriptor; null when there is none yet.
  const LinkedMetamodels* find(const Metamodel& metamodel) const;

  /// What a descriptor that has a list requires.
  const ResolvedRequirements& requirementsOf(const Metamodel& metamodel) const;

  /// Keeps a list, unless the descriptor has one already; returns the one kept. What was made alone
  /// before takes the place of its equal in the list. Throws std::system_error when it cannot lock.
  const LinkedMetamodels& add(const Metamodel& metamodel, LinkedMetamodels&& list,
                              ResolvedRequirements&& requirements);

  /// @name Linked metamodels made alone
  /// Of a list that would be too long to be made, single elements can be made: each is the one that
  /// the list would have, if it came to be made. They are told apart by what is linked for each
  /// dependency. Throw std::system_error when they cannot lock.
  /// @{

  /// The one made alone that links the same as `linked` for each dependency; null when there is
  /// none.
  std::shared_ptr<LinkedMetamodel> findAlone(const LinkedMetamodel& linked);

  /// The same, or the element of the descriptor's list.
  std::shared_ptr<LinkedMetamodel> findEqual(const LinkedMetamodel& linked);

  /// Keeps one that was made alone, unless there is an equal; returns the one kept.
  std::shared_ptr<LinkedMetamodel> addAlone(const std::shared_ptr<LinkedMetamodel>& linked);

  /// @}

 private:
  struct Entry {
    Metamodel metamodel;
    std::size_t hash;
    LinkedMetamodels list;
    ResolvedRequirements requirements;
  };

  /// A hash table with open addressing, never full. The size is a power of two.
  struct Table {
    explicit Table(std::size_t size) : slots(size) {}

    void insert(const Entry& entry);

    std::vector<std::atomic<const Entry*>> slots;
  };

  const Entry* find(const Metamodel& metamodel, std::size_t hash) const;
  std::shared_ptr<LinkedMetamodel> findEqualLocked(const LinkedMetamodel& linked) const;
  std::shared_ptr<LinkedMetamodel> findAloneLocked(const LinkedMetamodel& linked) const;
  void grow();

  std::atomic<const Table*> current_;
  std::atomic<bool> isAnyAlone_{false};  // so that whoever finds none need not lock

  std::mutex adding_;  // guards what follows
  std::deque<Entry> entries_;
  std::deque<std::shared_ptr<LinkedMetamodel>> alone_;
  std::unordered_multimap<std::size_t, const std::shared_ptr<LinkedMetamodel>*> aloneByHash_;

  // The last one is current. Others may still be read: what they lack is sought again under the
  // lock. Together they are no larger than the last.
  std::vector<std::unique_ptr<Table>> tables_;
};

}  // namespace tarn::evolution::pathfinder
