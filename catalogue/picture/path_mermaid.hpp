#pragma once

#include <iosfwd>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The path as a Mermaid flowchart, for pages that render it: a subgraph for each step, a node for
/// each version reached in it, an edge for each move. Metamodels that never move stand at the start
/// only.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathMermaid(const PathPicture& picture,
                                                      std::ostream& out);

}  // namespace tarn::evolution::catalogue
