#pragma once

#include <string>
#include <vector>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version, or {"anyOf": [bounds]} of several of these.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes a dependency as a catalogue has it: {"name", "range"}, a range being one version, a pair
/// [lower, upper), or {"anyOf": [range]}.
void writeDependency(JsonPrinter& printer, const pathfinder::Dependency& dependency);

/// Writes a list of them, each with the field "note" if there is one. There may be fewer notes.
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies,
                       const std::vector<std::u16string>& notes);

/// Writes the field "note", unless it is empty.
void writeNote(JsonPrinter& printer, const std::u16string& note);

}  // namespace tarn::evolution::catalogue
