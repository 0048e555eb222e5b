#pragma once

#include <nlohmann/json.hpp>

#include "catalogue/path_picture.hpp"

namespace tarn::evolution::catalogue {

/// One step of a picture as {"weight", "hops": [{"name", "from", "to", "expensive"}],
/// "broughtIn": [{"name", "version"}]}.
nlohmann::ordered_json stepToJson(const PathPicture& picture, const PathPicture::Step& step);

}  // namespace tarn::evolution::catalogue
