#pragma once

#include <vector>

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/explanation/clash.hpp"

namespace tarn::evolution::catalogue {

/// What parties ask, by party, that cannot stand together and disagree on several names taken
/// together: for each choice of one candidate of each party something on which two of these
/// disagree. Of very many choices only the first are looked at.
std::vector<Requirement> findScatteredRequirements(pathfinder::VersionRepository& repository,
                                                   const std::vector<Candidates>& parties);

}  // namespace tarn::evolution::catalogue
