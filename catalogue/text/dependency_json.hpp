#pragma once

#include <string>
#include <vector>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version, or {"anyOf": [bounds]} of several of these.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes dependencies as a catalogue has them: [{"name", "range", "note"}], a range being one
/// version, a pair [lower, upper), or {"anyOf": [range]}. There may be fewer notes.
void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies,
                       const std::vector<std::u16string>& notes);

/// Writes the field "note", unless it is empty.
void writeNote(JsonPrinter& printer, const std::u16string& note);

}  // namespace tarn::evolution::catalogue
