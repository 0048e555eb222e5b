#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/store/store_progress.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Formats of other programs that catalogues can be made of; docs/import.md tells what each
/// becomes.
enum class ImportFormat {
  Operators,    ///< file-based catalogues of operator packages, JSON or YAML
  Npm,          ///< documents that an npm registry serves for packages
  Postgresql,   ///< folders of PostgreSQL extensions
  UpdateGraph,  ///< update graphs of clusters
  Stops,        ///< tables of required stops
  Table,        ///< comma-separated values
};

/// Which hops are made where the source tells no hops, only versions.
enum class OfferedHops {
  Majors,  ///< to the newest version of the own and of each later major version
  Minors,  ///< to the newest version of the own and of each later minor version
  All,     ///< to each later version
};

/// What to import, and how.
struct ImportOptions {
  ImportFormat format = ImportFormat::Table;
  std::vector<std::filesystem::path> sources;  ///< files, or folders where the format has several

  /// Goes before every name of a source: none for all sources, or one, or one for each source.
  /// A dependency means the name with the same prefix where there is one, else the one without.
  std::vector<std::string> prefixes;

  /// Leave out what is at fault instead of refusing all.
  bool isLenient = false;

  /// Keep what the catalogue holds of names that the sources do not have.
  bool keepsOthers = false;

  OfferedHops offeredHops = OfferedHops::Majors;  ///< of npm packages and required stops
  bool withEngines = false;                       ///< npm: "engines" are dependencies
  std::filesystem::path servers;  ///< PostgreSQL: which server runs what, a table; may be empty
};

/// How a catalogue differs from what stood in its place.
struct CatalogueChanges {
  StoreCounts added;
  StoreCounts removed;
  StoreCounts changed;  ///< versions with other dependencies or equivalent, hops with another
                        ///< weight, and both with other notes
};

struct ImportReport {
  StoreCounts counts;                   ///< of the catalogue that was made
  bool isUpdate = false;                ///< whether there was a catalogue in its place
  CatalogueChanges changes;             ///< against that one
  std::vector<CatalogueError> leftOut;  ///< of a lenient import, each with its reason
  std::size_t unordered = 0;  ///< versions whose place among the semantic ones cannot be told
};

/// Makes a catalogue of what other programs keep: JSON when the name of `catalogue` ends in
/// ".json", else a store. It takes the place of what stands there when it is complete, as
/// `importCatalogue` and `exportCatalogue` tell; a JSON file that is no catalogue is left alone.
///
/// Throws CatalogueError, with file and line or pointer, for the first fault unless it is lenient,
/// also then for files that cannot be read or are not of the format at all. What `progress` throws
/// ends it; nothing has been changed then. Memory grows with what is imported.
TARN_EVOLUTION_CATALOGUE_EXPORT ImportReport
importForeignCatalogue(const ImportOptions& options, const std::filesystem::path& catalogue,
                       const StoreProgress& progress = {}, ChangeMode mode = ChangeMode::Made);

}  // namespace tarn::evolution::catalogue
