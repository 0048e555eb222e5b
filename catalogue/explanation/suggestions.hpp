#pragma once

#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// The names among `known`, which ascend, most like `name`, the most similar first: at most three,
/// of which one contains the other or at most a third of the characters (at least two) differ.
std::vector<std::u16string> nearestNames(const std::u16string& name,
                                         const std::vector<std::u16string>& known);

/// The nearest of a metamodel's versions, as `UnknownEntry::nearestVersions` tells.
std::vector<pathfinder::VersionId> nearestVersions(const pathfinder::VersionId& version,
                                                   const std::vector<CatalogueMetamodel>& known);

}  // namespace tarn::evolution::catalogue
