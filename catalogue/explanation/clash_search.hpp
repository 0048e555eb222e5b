#pragma once

#include <optional>
#include <vector>

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/explanation/clash.hpp"

namespace tarn::evolution::catalogue {

/// Why the candidates cannot stand together; none when they can. Every name must have a candidate.
/// Takes two names that disagree, if any two do; otherwise leaves out name by name as long as the
/// others still disagree.
std::optional<Clash> findClash(const std::vector<Candidates>& candidates);

}  // namespace tarn::evolution::catalogue
