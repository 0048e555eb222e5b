#pragma once

#include <filesystem>

#include "catalogue/check/catalogue_draft.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The draft of a catalogue file, whatever its form. Throws CatalogueError, which names the file,
/// when it cannot be opened.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueDraft readDraft(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
