#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "catalogue/import/known_version.hpp"
#include "pathfinder/semver.hpp"

namespace tarn::evolution::catalogue {

/// A range of a catalogue that admits, of the versions of a name that are known, exactly those at
/// the indices `wanted`, which ascend and are not empty. `spans`, where it does that, is kept as it
/// is written, but for an upper bound that is none; otherwise it may be wider or narrower where
/// there is no version. Where no one range does, it is a union. Empty when none does either, for a
/// wanted version shares its equivalent with one that is not.
std::optional<pathfinder::VersionRange> fitRange(const std::vector<KnownVersion>& versions,
                                                 const std::vector<std::size_t>& wanted,
                                                 const std::vector<pathfinder::SemVerRange>& spans);

}  // namespace tarn::evolution::catalogue
