#pragma once

#include <map>
#include <string>

#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/search/direction.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::computeDirection` for baselines that are not linked: their versions by name.
Direction directionBetween(SelectionHost& host,
                           const std::map<std::u16string, const Metamodel*>& source,
                           const std::map<std::u16string, const Metamodel*>& target);

}  // namespace tarn::evolution::pathfinder
