#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/model/dependency_graph.hpp"

namespace tarn::evolution::catalogue {

/// The rows of versions that each have the next one, and the last one the first, among the
/// candidates of their dependencies: a shortest such cycle through the first row that lies on any.
/// Empty when there is none. The same for equal rows, in whichever order names are numbered.
///
/// Time is nearly linear in versions and dependencies, however many versions their ranges span.
std::vector<std::uint32_t> findCycle(const VersionSlots& slots,
                                     std::vector<DependencyGraph::Dependency> dependencies);

/// The positions of metamodels that `findCycle` finds. Each dependency must name one of them.
std::vector<CatalogueIndex::Position> findDependencyCycle(
    const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index);

}  // namespace tarn::evolution::catalogue
