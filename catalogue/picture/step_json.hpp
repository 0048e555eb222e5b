#pragma once

#include <nlohmann/json.hpp>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// One step of a picture as {"weight", "hops": [{"name", "from", "to", "expensive"}],
/// "broughtIn": [{"name", "version"}]}.
nlohmann::ordered_json stepToJson(const PathPicture& picture, const PathPicture::Step& step);

/// All steps of a picture.
TARN_EVOLUTION_CATALOGUE_EXPORT nlohmann::ordered_json stepsToJson(const PathPicture& picture);

}  // namespace tarn::evolution::catalogue
