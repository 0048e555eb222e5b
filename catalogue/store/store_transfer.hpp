#pragma once

#include <filesystem>
#include <iosfwd>

#include "catalogue/store/store_progress.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Catalogues from JSON to stores and back. A file is written beside its target and takes the
/// target's place when it is complete, so that at any moment, also when the process is killed or
/// power fails, the target is the old file or the new one; who has the old one open keeps it. Waits
/// up to five seconds for others that write the target. Memory does not grow with the catalogue,
/// but for its dependency graph when it is imported (about a hundred bytes for each version).
///
/// Everything here throws CatalogueError, which names the file that is at fault.
namespace tarn::evolution::catalogue {

/// Makes a store of a JSON catalogue. Refuses what `readJsonCatalogue` refuses, and says the same.
/// A store that stands in the place is replaced, also a damaged one; one of a newer form, one in
/// which another program has tables, and any other file are left alone, and that is an error.
TARN_EVOLUTION_CATALOGUE_EXPORT StoreCounts importCatalogue(const std::filesystem::path& json,
                                                            const std::filesystem::path& store,
                                                            const StoreProgress& progress = {},
                                                            ChangeMode mode = ChangeMode::Made);

/// Writes a store as a JSON catalogue, as it is when the operation begins. A regular file that
/// stands in the place is replaced, unless it is a SQLite database, which is left alone, and that
/// is an error. A pipe or device is written to as it is, and a symbolic link stands for what it
/// leads to.
TARN_EVOLUTION_CATALOGUE_EXPORT StoreCounts exportCatalogue(const std::filesystem::path& store,
                                                            const std::filesystem::path& json,
                                                            const StoreProgress& progress = {});

/// The same to a stream, which is flushed at the end; what goes wrong with it is thrown as
/// std::ios_base::failure.
TARN_EVOLUTION_CATALOGUE_EXPORT StoreCounts exportCatalogue(const std::filesystem::path& store,
                                                            std::ostream& out,
                                                            const StoreProgress& progress = {});

}  // namespace tarn::evolution::catalogue
