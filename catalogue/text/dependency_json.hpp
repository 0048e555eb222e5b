#pragma once

#include <string>

#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version, or {"anyOf": [bounds]} of several of these.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes a dependency as a catalogue has it: {"name", "range"}, a range being one version, a pair
/// [lower, upper), or {"anyOf": [range]}.
void writeDependency(JsonPrinter& printer, const pathfinder::Dependency& dependency);

/// Writes just these fields.
void writeDependencyFields(JsonPrinter& printer, const std::u16string& name,
                           const pathfinder::VersionRange& range);

/// Writes the field "note", unless it is empty.
void writeNote(JsonPrinter& printer, const std::u16string& note);

}  // namespace tarn::evolution::catalogue
