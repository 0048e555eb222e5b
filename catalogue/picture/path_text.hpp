#pragma once

#include <iosfwd>

#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/step_text.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The baseline that the path starts from, a line for each metamodel under a heading.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeStartText(const PathPicture& picture, Colouring colouring,
                                                    std::ostream& out);

/// The path as lines of text: each step with its weight and moves, and the sum at the end.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathText(const PathPicture& picture, Colouring colouring,
                                                   std::ostream& out);

}  // namespace tarn::evolution::catalogue
