#pragma once

#include <filesystem>
#include <memory>

#include "catalogue/browsable_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The repository of a catalogue file, the caller's to keep: a `SqliteCatalogueRepository` when the
/// file is a regular one and begins as a SQLite database does, otherwise a `CatalogueRepository` of
/// the JSON in it.
/// Throws CatalogueError, which names the file, when it cannot be read, or the JSON is unsound. A
/// store is not checked: operations throw for the damage that they meet.
TARN_EVOLUTION_CATALOGUE_EXPORT std::unique_ptr<BrowsableRepository> openCatalogue(
    const std::filesystem::path& file);

/// All that a catalogue file holds, in memory, whichever form it has. Throws CatalogueError, which
/// names the file, when it cannot be read or is unsound.
TARN_EVOLUTION_CATALOGUE_EXPORT Catalogue readCatalogue(const std::filesystem::path& file);

}  // namespace tarn::evolution::catalogue
