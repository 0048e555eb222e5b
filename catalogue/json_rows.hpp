#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "catalogue/catalogue.hpp"

/// The rows of a catalogue in JSON. Everything here throws CatalogueError for a value of another
/// form; `place` is where the value stands, a JSON pointer.
namespace tarn::evolution::catalogue {

CatalogueMetamodel readMetamodelRow(const nlohmann::json& value, const std::string& place);
pathfinder::Hop readHopRow(const nlohmann::json& value, const std::string& place);
Question readQuestionRow(const nlohmann::json& value, const std::string& place);

/// The reason to give for a value that should have been something else, such as "an array".
std::string wrongKind(const nlohmann::json& value, const std::string& wanted);

}  // namespace tarn::evolution::catalogue
