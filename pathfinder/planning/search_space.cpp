#include "pathfinder/planning/search_space.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

VariantIndex SearchSpace::Variant::heldUnder(NameIndex name) const {
  const auto found =
      std::lower_bound(closure.begin(), closure.end(), name,
                       [](const Link& link, NameIndex wanted) { return link.name < wanted; });
  return found != closure.end() && found->name == name ? found->variant : none;
}

VersionIndex SearchSpace::versionOf(const LinkedMetamodel& linked) const {
  const auto variant = variantOf.find(&linked);
  return variant == variantOf.end() ? none : variants[variant->second].version;
}

}  // namespace tarn::evolution::pathfinder
