#pragma once

#include <string>
#include <vector>

#include "catalogue/import/source_files.hpp"

namespace tarn::evolution::catalogue {

/// What a control file of a PostgreSQL extension says of other extensions.
struct ControlFile {
  bool hasRequirements = false;       ///< whether it says anything of them
  std::vector<std::string> required;  ///< names
  SourcePlace place;                  ///< where it says so, or its beginning
};

/// Reads a control file, in the form of postgresql.conf. Throws CatalogueError, with file and line,
/// for a line that is not of it.
ControlFile readControlFile(SourceFile& file);

}  // namespace tarn::evolution::catalogue
