#pragma once

#include <nlohmann/json.hpp>

#include "pathfinder/version_id.hpp"

namespace tarn::evolution::catalogue {

/// A range as a catalogue writes it: one version, or a pair [lower, upper).
nlohmann::ordered_json rangeToJson(const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
