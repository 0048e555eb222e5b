#pragma once

#include <iosfwd>

#include "catalogue/model/catalogue_sink.hpp"

namespace tarn::evolution::catalogue {

/// Reads a catalogue in JSON, in the form that `readJsonCatalogue` describes, and hands each row on
/// as soon as it is complete. Holds one row at a time. Whether the catalogue is sound is not looked
/// at.
///
/// Throws CatalogueError when the text is not JSON or not of this form; rows before that place have
/// been handed on by then.
void streamJsonCatalogue(std::istream& in, CatalogueSink& sink);

}  // namespace tarn::evolution::catalogue
