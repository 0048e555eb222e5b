#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarn::evolution::pathfinder {

class LinkedMetamodel;

/// Adds entries to a map of linked metamodels, all or none: unless `keep` is called, the map is as
/// it was before, in its order too.
class EntryInsertion {
 public:
  using Map = std::unordered_map<std::u16string, std::shared_ptr<LinkedMetamodel>>;

  /// Refers to the map, which nobody else may change meanwhile.
  explicit EntryInsertion(Map& map) : map_(map) {}
  ~EntryInsertion();
  EntryInsertion(const EntryInsertion&) = delete;
  EntryInsertion& operator=(const EntryInsertion&) = delete;

  /// What the map holds under the name from then on: what it held already, or `linked`.
  const std::shared_ptr<LinkedMetamodel>& add(const std::u16string& name,
                                              const std::shared_ptr<LinkedMetamodel>& linked);

  /// Nothing is taken back.
  void keep() noexcept;

 private:
  Map& map_;
  std::vector<const std::u16string*> added_;  // to the map itself
  std::optional<Map> grown_;                  // a copy, once the map would have to grow
};

}  // namespace tarn::evolution::pathfinder
