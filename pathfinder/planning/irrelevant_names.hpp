#pragma once

#include <memory_resource>
#include <string>
#include <unordered_set>

#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// The names of a question that no best path moves, as far as the question itself tells: every
/// source, and every target that mentions it, holds the same linked metamodel under the name, one
/// that links and requires nothing.
///
/// Without the hops of such a name, every baseline on the way would be as consistent, and the path
/// lighter, if nothing that the path may hold links or requires it, and no target needs a name to
/// be brought in. Who finds that a name is relevant after all removes it.
class IrrelevantNames {
 public:
  IrrelevantNames(const SearchQuestion& question, std::pmr::memory_resource* memory);

  bool contain(const LinkedMetamodel& linked) const { return linked_.contains(&linked); }

  /// The name's entry in the first source; null when the name is relevant.
  const std::pair<const std::u16string, std::shared_ptr<LinkedMetamodel>>* find(
      const std::u16string& name) const;

  void remove(const LinkedMetamodel& linked) { linked_.erase(&linked); }
  bool empty() const { return linked_.empty(); }

 private:
  bool maybeIrrelevant(const std::u16string& name,
                       const std::shared_ptr<LinkedMetamodel>& linked) const;

  const SearchQuestion& question_;
  std::pmr::unordered_set<const LinkedMetamodel*> linked_;
};

}  // namespace tarn::evolution::pathfinder
