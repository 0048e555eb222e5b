#pragma once

#include <cstddef>
#include <vector>

#include "pathfinder/planning/bit_row.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A set of versions of all names of a search space; those of one name can be taken as a row.
class VersionSet {
 public:
  explicit VersionSet(const SearchSpace& space) : space_(&space), words_(space.words) {}

  ConstBitRow of(NameIndex index) const {
    const SearchSpace::Name& name = space_->names[index];
    return {words_.data() + name.firstWord, name.words()};
  }

  bool contains(VersionIndex version) const {
    return ConstBitRow(words_.data(), words_.size()).contains(space_->bitOf[version]);
  }

  /// Whether it is new.
  bool insert(VersionIndex version) {
    if (contains(version)) return false;
    BitRow(words_.data(), words_.size()).insert(space_->bitOf[version]);
    return true;
  }

  void erase(VersionIndex version) {
    BitRow(words_.data(), words_.size()).erase(space_->bitOf[version]);
  }

 private:
  const SearchSpace* space_;
  std::vector<BitWord> words_;
};

}  // namespace tarn::evolution::pathfinder
