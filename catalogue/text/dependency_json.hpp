#pragma once

#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/text/json_printer.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// Writes a pair [lower, upper), or a text version, or {"anyOf": [bounds]} of several of these.
void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range);

/// Writes a dependency as a catalogue has it: {"name", "range"}, a range being one version, a pair
/// [lower, upper), or {"anyOf": [range]}.
void writeDependency(JsonPrinter& printer, const pathfinder::Dependency& dependency);

/// What is told of a dependency that does not link, unless it is optional.
enum class Unlinked { NotTold, Told };

/// Writes what a metamodel needs as a catalogue has it, what does not link after what does, each
/// with the fields "note" and "optional" where they say something; with "linked": false, if told
/// so, where it does not link although it is not optional.
void writeDependencies(JsonPrinter& printer, const CatalogueMetamodel& metamodel,
                       Unlinked unlinked = Unlinked::NotTold);

/// Writes the field "note", unless it is empty.
void writeNote(JsonPrinter& printer, const std::u16string& note);

}  // namespace tarn::evolution::catalogue
