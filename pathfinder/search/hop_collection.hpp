#pragma once

#include <string>
#include <vector>

#include "pathfinder/search/search_host.hpp"

namespace tarn::evolution::pathfinder {

/// The hops that leave `linked`, which a baseline holds under `name`, and do not go against
/// `direction`.
std::vector<Hop> collectHops(SearchHost& host, Direction direction, const std::u16string& name,
                             const LinkedMetamodel& linked);

}  // namespace tarn::evolution::pathfinder
