#pragma once

#include <filesystem>
#include <iosfwd>

#include "catalogue/check/catalogue_draft.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Reads a JSON catalogue (see json_catalogue.hpp) as far as it goes: whatever is of another form
/// becomes a finding, and what is left out for it is no more than the value in question. A text
/// that is not JSON is one finding, with line and column.
///
/// Of a field that stands twice, the first counts.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueDraft readJsonDraft(std::istream& in);

/// The same from a file. Throws CatalogueError, which names the file, when it cannot be opened.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueDraft readJsonDraft(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
