#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "catalogue/explanation/linkable_repository.hpp"

namespace tarn::evolution::catalogue {

/// The linked metamodels of which one may stand under a name.
struct Candidates {
  std::u16string name;
  LinkedMetamodels linked;
};

struct CombinedCandidates {
  std::vector<pathfinder::VersionBaseline> baselines;
  bool isCut = false;  ///< the search was ended before it had tried everything
};

/// The consistent baselines with one candidate for each name, in mixed-radix order, the first name
/// being the most significant digit. No names give no baseline. Ends when it has `limit` baselines,
/// or when it has tried a fixed number of picks.
CombinedCandidates combineCandidates(const std::vector<Candidates>& candidates, std::size_t limit);

/// Whether there is such a baseline. When that cannot be settled within the number of picks, says
/// there is.
bool canStandTogether(const std::vector<Candidates>& candidates);

}  // namespace tarn::evolution::catalogue
