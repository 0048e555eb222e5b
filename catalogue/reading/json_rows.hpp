#pragma once

#include <string>

#include "catalogue/catalogue.hpp"
#include "catalogue/reading/json_pieces.hpp"

/// The rows of a catalogue in JSON. Everything here throws CatalogueError for a value of another
/// form; `place` is where the value stands, a JSON pointer.
namespace tarn::evolution::catalogue {

CatalogueMetamodel readMetamodelRow(const JsonValue& value, const std::string& place);
pathfinder::Hop readHopRow(const JsonValue& value, const std::string& place);
Question readQuestionRow(const JsonValue& value, const std::string& place);

}  // namespace tarn::evolution::catalogue
