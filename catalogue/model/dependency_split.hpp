#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Adds what a metamodel needs, and what is told of that, after what it has of its kind: as a
/// dependency, or as a requirement if it is optional.
void addDependency(CatalogueMetamodel& metamodel, pathfinder::PeerRequirement needed,
                   std::u16string note);

/// Makes requirements of the dependencies for which `leadsBack` holds, in their order.
void makeRequirements(CatalogueMetamodel& metamodel, const std::vector<bool>& leadsBack);

/// The metamodels that have dependencies which do not link, by their positions: with requirements
/// in their place.
std::unordered_map<CatalogueIndex::Position, CatalogueMetamodel> splitDependencies(
    const Catalogue& catalogue);

}  // namespace tarn::evolution::catalogue
