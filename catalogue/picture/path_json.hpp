#pragma once

#include <iosfwd>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The path for programs: {"found": true, "weight", "steps": [{"weight", "hops": [{"name", "from",
/// "to", "expensive"}], "broughtIn": [{"name", "version"}]}]}.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathJson(const PathPicture& picture, std::ostream& out);

}  // namespace tarn::evolution::catalogue
