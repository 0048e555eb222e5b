#pragma once

#include "catalogue/catalogue.hpp"
#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

/// Whether it is told of a dependency that is not optional that it does not link.
enum class Unlinked { NotTold, Told };

/// Writes what a metamodel needs as a list, as a catalogue has it: what does not link after what
/// does, each with the fields "note" and "optional" where they say something; with "linked": false,
/// if told so, where it does not link although it is not optional.
void writeNeeds(JsonPrinter& printer, const CatalogueMetamodel& metamodel,
                Unlinked unlinked = Unlinked::NotTold);

}  // namespace tarn::evolution::catalogue
