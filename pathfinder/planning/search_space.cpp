#include "pathfinder/planning/search_space.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

VariantIndex SearchSpace::Variant::heldUnder(NameIndex name) const {
  const auto found =
      std::lower_bound(closure.begin(), closure.end(), name,
                       [](const Link& link, NameIndex wanted) { return link.name < wanted; });
  return found != closure.end() && found->name == name ? found->variant : none;
}

bool SearchSpace::isTarget(std::span<const VersionIndex> selection) const {
  return std::any_of(targets.begin(), targets.end(), [&](const VersionSelection& target) {
    return std::equal(
        target.begin(), target.end(), selection.begin(), selection.end(),
        [](VersionIndex wanted, VersionIndex held) { return wanted == held || wanted == none; });
  });
}

VersionIndex SearchSpace::versionOf(const LinkedMetamodel& linked) const {
  const auto variant = variantOf.find(&linked);
  return variant == variantOf.end() ? none : variants[variant->second].version;
}

}  // namespace tarn::evolution::pathfinder
