#pragma once

#include <string>

#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Lays out a DOT graph and draws it as SVG with the program `dot` of Graphviz, which is run
/// without a shell. Waits until it ends, however long that takes. Throws std::runtime_error when it
/// is not installed, and with its own words when it fails.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string drawWithGraphviz(const std::string& dot);

}  // namespace tarn::evolution::catalogue
