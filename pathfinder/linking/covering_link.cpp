#include "pathfinder/linking/covering_link.hpp"

namespace tarn::evolution::pathfinder {

const LinkedMetamodel* coveringLink(const LinkedMetamodel& linked) {
  const auto& links = linked.linkedMetamodels;
  for (const Dependency& dependency : linked.dependencies) {
    const auto direct = links.find(dependency.name);
    if (direct == links.end()) continue;
    // All that a link links is linked with it, so that the numbers tell.
    if (direct->second->linkedMetamodels.size() + 1 != links.size()) continue;
    return links.contains(linked.name) ? nullptr : direct->second.get();
  }
  return nullptr;
}

}  // namespace tarn::evolution::pathfinder
