#include "catalogue/model/dependency_cycle.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_map>
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

std::vector<CatalogueIndex::Position> findDependencyCycle(
    const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index) {
  std::unordered_map<std::u16string_view, NameNumber> names;
  std::vector<VersionSlots::Version> versions;
  for (const CatalogueMetamodel& metamodel : metamodels) {
    const auto number = static_cast<NameNumber>(names.size());
    const NameNumber name = names.try_emplace(metamodel.descriptor.name, number).first->second;
    versions.push_back({name, static_cast<std::uint32_t>(versions.size()), metamodel.precedence(),
                        metamodel.semVer().has_value()});
  }
  const VersionSlots slots(std::move(versions), names.size(), metamodels.size());
  std::vector<DependencyGraph::Dependency> dependencies;
  for (std::size_t position = 0; position < metamodels.size(); ++position) {
    for (const pathfinder::Dependency& dependency : metamodels[position].descriptor.dependencies) {
      const auto findText = [&](const std::u16string& text) {
        const auto& found = index.metamodelsAt(dependency.name, text);
        return found.empty() ? nothing : slots.slotOf(found.front());
      };
      const NameNumber name = names.at(dependency.name);
      slots.forAdmitted(name, dependency.range, findText, [&](SlotInterval candidates) {
        dependencies.push_back({slots.slotOf(position), candidates});
      });
    }
  }
  const std::vector<std::uint32_t> rows = findCycle(slots, std::move(dependencies));
  return {rows.begin(), rows.end()};
}

}  // namespace tarn::evolution::catalogue
