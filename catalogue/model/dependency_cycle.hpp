#pragma once

#include <vector>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// The positions of metamodels that each have a version of the next one, and the last one a version
/// of the first, among the candidates of their dependencies; empty when there is no such cycle.
///
/// Time is nearly linear in metamodels and dependencies, however many versions their ranges span.
std::vector<CatalogueIndex::Position> findDependencyCycle(
    const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index);

}  // namespace tarn::evolution::catalogue
