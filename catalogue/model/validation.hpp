#pragma once

#include "catalogue/model/packed_rows.hpp"

namespace tarn::evolution::catalogue {

/// Throws CatalogueError for the first way in which rows are unsound, as `Catalogue` defines it.
/// `index` is theirs.
void validate(const PackedRows& rows, const CatalogueIndex& index);

}  // namespace tarn::evolution::catalogue
