#pragma once

#include <filesystem>

#include "catalogue/check/catalogue_draft.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Reads a store as far as it goes: whatever a row holds that cannot stand there becomes a finding,
/// and so does what SQLite itself finds wrong with the file.
///
/// Throws CatalogueError, which names the file, when it is no store or cannot be opened.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueDraft readSqliteDraft(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
