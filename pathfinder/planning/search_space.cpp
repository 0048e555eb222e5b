#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

VersionIndex SearchSpace::versionOf(const LinkedMetamodel& linked) const {
  const auto variant = variantOf.find(&linked);
  return variant == variantOf.end() ? none : variants[variant->second].version;
}

}  // namespace tarn::evolution::pathfinder
