#include "pathfinder/planning/selection_links.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

SelectionLinks::SelectionLinks(const SearchSpace& space)
    : space_(space), entangled_(findEntangled()) {}

bool SelectionLinks::mayLeadTo(SelectionView before, SelectionView after) const {
  return isBroughtIn(before, after) && areCombinedInOrder(before, after);
}

/// Whether links to another version of the linking name stand back. Names that were held before
/// the step are combined one after the other: none may link another version of a later one than
/// the step leads to, though that one may bring it in; nor the first one of its own.
bool SelectionLinks::areCombinedInOrder(SelectionView before, SelectionView after) const {
  if (!space_.anyLinksOwnName) return true;
  bool isFirst = true;
  for (NameIndex name = 0; name < after.size(); ++name) {
    if (name >= space_.firstIrrelevant) isFirst = false;
    if (space_.isAbsent(before[name])) continue;
    const auto agreesWithLater = [&](const SearchSpace::Link& link) {
      return link.name <= name || space_.isAbsent(before[link.name]) ||
             isLinkTo(link, after[link.name]);
    };
    const auto variants = space_.variantsOf(after[name]);
    const bool isCombined =
        std::any_of(variants.begin(), variants.end(), [&](const SearchSpace::Variant& variant) {
          return !(isFirst && variant.linksOwnName) &&
                 std::all_of(variant.closure.begin(), variant.closure.end(), agreesWithLater);
        });
    if (!isCombined) return false;
    isFirst = false;
  }
  return true;
}

/// Whether every name that the step adds is linked by a name that was held before it.
bool SelectionLinks::isBroughtIn(SelectionView before, SelectionView after) const {
  std::vector<NameIndex> entering;
  for (NameIndex name = 0; name < before.size(); ++name) {
    if (space_.isAbsent(before[name]) && !space_.isAbsent(after[name])) entering.push_back(name);
  }
  for (NameIndex name = 0; name < before.size() && !entering.empty(); ++name) {
    if (space_.isAbsent(before[name])) continue;
    if (space_.versions[after[name]].isUnknown) return true;  // who knows what it links
    for (const SearchSpace::Variant& variant : space_.variantsOf(after[name])) {
      if (!matches(variant.closure, after)) continue;
      std::erase_if(entering, [&](NameIndex added) {
        return std::any_of(variant.closure.begin(), variant.closure.end(),
                           [added](const SearchSpace::Link& link) { return link.name == added; });
      });
    }
  }
  return entering.empty();
}

bool SelectionLinks::mayBeHeld(SelectionView selection) const {
  return std::all_of(entangled_.begin(), entangled_.end(), [&](NameIndex name) {
    const auto variants = space_.variantsOf(selection[name]);
    return (variants.size() <= 1 && !space_.anyLinksOwnName) || variants.empty() ||
           std::any_of(variants.begin(), variants.end(), [&](const auto& variant) {
             return variant.canBeCombined && hasItsLinks(variant, name, selection);
           });
  });
}

/// Whether the selection holds what a variant of a name links. A link back to another version of
/// the name that brings the variant in stands back.
bool SelectionLinks::hasItsLinks(const SearchSpace::Variant& variant, NameIndex name,
                                 SelectionView selection) const {
  const VariantIndex own = variant.heldUnder(name);
  return std::all_of(
      variant.closure.begin(), variant.closure.end(), [&](const SearchSpace::Link& link) {
        return isLinkTo(link, selection[link.name]) ||
               (space_.anyLinksOwnName && isBroughtInBy(link.name, name, own, selection));
      });
}

/// Whether what the selection holds under a name may link a variant.
bool SelectionLinks::isBroughtInBy(NameIndex linking, NameIndex name, VariantIndex linked,
                                   SelectionView selection) const {
  const auto variants = space_.variantsOf(selection[linking]);
  return std::any_of(variants.begin(), variants.end(), [&](const auto& variant) {
    return variant.canBeCombined && variant.heldUnder(name) == linked &&
           matches(variant.closure, selection);
  });
}

/// The names of which a version has several linked metamodels that link several names, or cannot
/// all be held; where versions link others of their own names, all that link something.
std::vector<NameIndex> SelectionLinks::findEntangled() const {
  std::vector<NameIndex> result;
  for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
    const NameIndex name = space_.versions[version].name;
    const auto variants = space_.variantsOf(version);
    if (!result.empty() && result.back() == name) continue;
    if (variants.size() <= 1 && !space_.anyLinksOwnName) continue;
    const std::size_t pairwise = space_.anyLinksOwnName ? 1 : 2;  // names that rows settle
    const bool isEntangled =
        std::any_of(variants.begin(), variants.end(), [&](const SearchSpace::Variant& variant) {
          return variant.closure.size() > pairwise || !variant.canBeCombined;
        });
    if (isEntangled) result.push_back(name);
  }
  return result;
}

/// Whether a link may be to what is held. What is not known may be anything.
bool SelectionLinks::isLinkTo(const SearchSpace::Link& link, VersionIndex held) const {
  return space_.variants[link.variant].version == held || space_.versions[held].isUnknown;
}

bool SelectionLinks::matches(std::span<const SearchSpace::Link> closure,
                             SelectionView selection) const {
  return std::all_of(closure.begin(), closure.end(), [&](const SearchSpace::Link& link) {
    return isLinkTo(link, selection[link.name]);
  });
}

}  // namespace tarn::evolution::pathfinder
