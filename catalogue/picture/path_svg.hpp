#pragma once

#include <iosfwd>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The path as a swim-lane picture, a standalone SVG document that follows the reader's choice of
/// light or dark colours. Names and versions that are too long are shortened; resting on them shows
/// the whole.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathSvg(const PathPicture& picture, std::ostream& out);

}  // namespace tarn::evolution::catalogue
