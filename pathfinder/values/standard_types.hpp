#pragma once

#include <string>

#include "platform/meta_types.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionBaseline::lookupStandardType`.
tarn::meta::Type findStandardType(const std::u16string& qualifiedName);

}  // namespace tarn::evolution::pathfinder
