#include "pathfinder/search_space.hpp"

namespace tarn::evolution::pathfinder {

VersionSelection SearchSpace::selectionOf(const VersionBaseline& baseline) const {
  VersionSelection selection;
  selection.reserve(names.size());
  for (const Name& name : names) selection.push_back(name.absent);
  for (const auto& [name, linked] : baseline.metamodels) {
    const auto variant = variantOf.find(linked.get());
    if (variant == variantOf.end()) return {};
    if (variant->second == bystander) continue;
    const VersionIndex version = variants[variant->second].version;
    if (version == none) return {};
    selection[versions[version].name] = version;
  }
  return selection;
}

VersionIndex SearchSpace::versionOf(const LinkedMetamodel& linked) const {
  const auto variant = variantOf.find(&linked);
  return variant == variantOf.end() ? none : variants[variant->second].version;
}

}  // namespace tarn::evolution::pathfinder
