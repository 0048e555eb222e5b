#pragma once

#include <vector>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes dependencies as a catalogue has them: [{"name", "range"}], a range being one version, or
/// else its bounds.
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies);

}  // namespace tarn::evolution::catalogue
