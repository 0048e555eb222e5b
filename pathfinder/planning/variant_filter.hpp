#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "pathfinder/linking/linked_metamodel_cache.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A version of which one linked metamodel is to be chosen.
struct OpenVersion {
  VersionIndex version;
  const LinkedMetamodels* candidates;  ///< to choose from, in the repository's order
  LinkedMetamodels left = {};          ///< what `candidates` refers to once some were left out
};

/// Leaves out linked metamodels that no choice can hold, where a version has many: those that link
/// another linked metamodel than the only one that some name can have. Finds the others by an
/// index, so that a version with thousands of variants costs a step no more than a few.
class VariantFilter {
 public:
  explicit VariantFilter(const SearchSpace& space) : space_(space) {}

  void narrow(std::vector<OpenVersion>& open);

 private:
  /// A version's variants, by their places, under what they link for one name.
  struct ByLink {
    std::unordered_map<VariantIndex, std::vector<std::uint32_t>> linking;
    std::vector<std::uint32_t> linkingNone;

    std::size_t count(VariantIndex variant) const;
  };

  using Index = std::unordered_map<NameIndex, ByLink>;

  const Index& indexOf(VersionIndex version);
  void narrow(OpenVersion& open, const std::vector<SearchSpace::Link>& decided);

  const SearchSpace& space_;
  std::unordered_map<VersionIndex, Index> indices_;
};

}  // namespace tarn::evolution::pathfinder
