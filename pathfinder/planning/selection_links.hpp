#pragma once

#include <span>
#include <vector>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/selection_table.hpp"

namespace tarn::evolution::pathfinder {

/// What linked metamodels ask of whole selections and of steps, which pairs of versions do not
/// tell.
class SelectionLinks {
 public:
  /// Refers to the space.
  explicit SelectionLinks(const SearchSpace& space);

  /// Whether each version has a linked metamodel all links of which are to what the selection
  /// holds. That any two versions can stand together need not mean that for linked metamodels which
  /// link several names.
  bool mayBeHeld(SelectionView selection) const;

  /// Whether a step from one selection, which can be held, to another can link what that holds.
  bool mayLeadTo(SelectionView before, SelectionView after) const;

 private:
  bool areCombinedInOrder(SelectionView before, SelectionView after) const;
  bool isBroughtIn(SelectionView before, SelectionView after) const;
  bool hasItsLinks(const SearchSpace::Variant& variant, NameIndex name,
                   SelectionView selection) const;
  bool isBroughtInBy(NameIndex linking, NameIndex name, VariantIndex linked,
                     SelectionView selection) const;
  bool isLinkTo(const SearchSpace::Link& link, VersionIndex held) const;
  bool matches(std::span<const SearchSpace::Link> closure, SelectionView selection) const;
  std::vector<NameIndex> findEntangled() const;

  const SearchSpace& space_;
  const std::vector<NameIndex> entangled_;
};

}  // namespace tarn::evolution::pathfinder
