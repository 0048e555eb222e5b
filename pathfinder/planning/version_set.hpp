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
    return {&words_[name.firstWord], name.words()};
  }

  bool contains(VersionIndex version) const {
    return of(space_->versions[version].name).contains(space_->rankOf(version));
  }

  /// Whether it is new.
  bool insert(VersionIndex version) {
    if (contains(version)) return false;
    row(version).insert(space_->rankOf(version));
    return true;
  }

  void erase(VersionIndex version) { row(version).erase(space_->rankOf(version)); }

 private:
  BitRow row(VersionIndex version) {
    const SearchSpace::Name& name = space_->names[space_->versions[version].name];
    return {&words_[name.firstWord], name.words()};
  }

  const SearchSpace* space_;
  std::vector<BitWord> words_;
};

}  // namespace tarn::evolution::pathfinder
