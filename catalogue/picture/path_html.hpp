#pragma once

#include <iosfwd>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The path as one self-contained page: the swim lanes, the list of steps beside them, search on
/// names, and keys to move between steps. Asks nothing of the network. Without scripts it still
/// shows everything.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathHtml(const PathPicture& picture, std::ostream& out);

}  // namespace tarn::evolution::catalogue
