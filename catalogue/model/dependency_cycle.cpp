#include "catalogue/model/dependency_cycle.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/model/dependency_components.hpp"

namespace tarn::evolution::catalogue {

std::vector<std::uint32_t> findCycle(const VersionSlots& slots,
                                     std::vector<DependencyGraph::Dependency> dependencies) {
  const DependencyGraph graph(slots.size(), std::move(dependencies));
  const DependencyComponents components(graph);
  std::uint32_t first = nothing;
  for (const std::vector<Slot>& members : components.cyclic()) {
    for (const Slot slot : members) first = std::min(first, slots.at(slot).row);
  }
  std::vector<std::uint32_t> rows;
  if (first == nothing) return rows;
  for (const Slot slot : components.cycleThrough(slots.slotOf(first))) {
    rows.push_back(slots.at(slot).row);
  }
  return rows;
}

}  // namespace tarn::evolution::catalogue
