#pragma once

#include <vector>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version, or {"anyOf": [bounds]} of several of these.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes dependencies as a catalogue has them: [{"name", "range"}], a range being one version, a
/// pair [lower, upper), or {"anyOf": [range]}.
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies);

}  // namespace tarn::evolution::catalogue
