#pragma once

#include <optional>
#include <string>

#include "pathfinder/version_id.hpp"

namespace tarn::evolution::catalogue {

/// The version when a range includes just this one, as a catalogue may write it.
std::optional<pathfinder::VersionId> findSingleVersion(const pathfinder::VersionRange& range);

/// "1.0.0", "[1.0.0, 2.0.0)" or "spring".
std::string rangeText(const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
