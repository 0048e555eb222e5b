#pragma once

#include <memory_resource>
#include <string>
#include <unordered_set>

#include "pathfinder/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// The names of a question that may stand by: every source, and every target that mentions it,
/// holds the same linked metamodel under the name, one that depends on nothing.
///
/// A best path does not move such a name if nothing that the path may hold links it and no name has
/// to be brought in: without its hops, every baseline on the way would be as consistent, and the
/// path lighter. Who finds that a name is involved after all removes it.
class Bystanders {
 public:
  Bystanders(const SearchQuestion& question, std::pmr::memory_resource* memory);

  bool contain(const LinkedMetamodel& linked) const { return linked_.contains(&linked); }

  /// The name's entry in the first source; null when it does not stand by.
  const std::pair<const std::u16string, std::shared_ptr<LinkedMetamodel>>* find(
      const std::u16string& name) const;

  void remove(const LinkedMetamodel& linked) { linked_.erase(&linked); }
  bool empty() const { return linked_.empty(); }

 private:
  bool mayStandBy(const std::u16string& name, const std::shared_ptr<LinkedMetamodel>& linked) const;

  const SearchQuestion& question_;
  std::pmr::unordered_set<const LinkedMetamodel*> linked_;
};

}  // namespace tarn::evolution::pathfinder
