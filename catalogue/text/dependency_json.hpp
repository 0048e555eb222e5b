#pragma once

#include <vector>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes dependencies as a catalogue has them: [{"name", "range"}], a range being one version, or
/// a pair [lower, upper).
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies);

}  // namespace tarn::evolution::catalogue
