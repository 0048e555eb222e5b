#pragma once

#include <vector>

#include "catalogue/explanation/inquiry.hpp"

namespace tarn::evolution::catalogue {

/// The hops of a path that go against a direction: step by step, those of one by ascending name.
std::vector<pathfinder::Hop> hopsAgainst(pathfinder::VersionRepository& repository,
                                         Direction direction, const Path& path);

}  // namespace tarn::evolution::catalogue
