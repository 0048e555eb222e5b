#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/import/foreign_catalogue.hpp"
#include "catalogue/import/import.hpp"
#include "catalogue/import/import_log.hpp"
#include "catalogue/import/source_files.hpp"

namespace tarn::evolution::catalogue {

/// What a reader works with. The sources belong together: names in one mean those in the others.
struct Reading {
  const std::vector<std::filesystem::path>& sources;
  const ImportOptions& options;
  ImportLog& log;
  SourceFile::Advance advance;  ///< for the files that it opens
};

/// Readers of formats. Each reads all sources and returns what they hold; faults that are not of a
/// whole file go to the log. Throw CatalogueError, with file and place.
///@{

/// File-based catalogues of operator packages: documents of the schemas olm.package, olm.channel,
/// olm.bundle and olm.deprecations, in JSON or YAML.
ForeignCatalogue readOperators(const Reading& reading);

/// Documents that an npm registry serves for packages, with all their versions.
ForeignCatalogue readNpmPackages(const Reading& reading);

/// Folders of PostgreSQL extensions: NAME.control, NAME--VERSION.sql, NAME--FROM--TO.sql.
ForeignCatalogue readPostgresExtensions(const Reading& reading);

/// Update graphs of clusters: nodes, edges and conditional edges.
ForeignCatalogue readUpdateGraphs(const Reading& reading);

/// Tables of required stops, in YAML or JSON.
ForeignCatalogue readRequiredStops(const Reading& reading);

/// Tables of comma-separated values: of versions, or of hops.
ForeignCatalogue readTables(const Reading& reading);

///@}

}  // namespace tarn::evolution::catalogue
