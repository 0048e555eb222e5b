#pragma once

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Throws CatalogueError for the first way in which the content is unsound, as `Catalogue` defines
/// it.
void validate(const CatalogueContent& content, const CatalogueIndex& index);

}  // namespace tarn::evolution::catalogue
