#pragma once

#include <vector>

#include "catalogue/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes dependencies as a catalogue has them: [{"name", "range"}], a range being one version, a
/// pair [lower, upper), or {"anyOf": [range]}.
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies);

}  // namespace tarn::evolution::catalogue
