#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/explanation/clash.hpp"

namespace tarn::evolution::catalogue {

/// Why the candidates cannot stand together; none when they can. Every name must have a candidate.
/// Takes two names that disagree, if any two do; otherwise leaves out name by name as long as the
/// others still disagree.
std::optional<Clash> findClash(pathfinder::VersionRepository& repository,
                               const std::vector<Candidates>& candidates);

/// The parties of that clash, ascending; none when the candidates can stand together.
std::vector<std::u16string> findClashingNames(const std::vector<Candidates>& candidates);

}  // namespace tarn::evolution::catalogue
