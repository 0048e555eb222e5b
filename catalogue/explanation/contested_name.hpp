#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/explanation/clash.hpp"

namespace tarn::evolution::catalogue {

/// What parties ask of a name that each of them holds.
struct ContestedName {
  std::u16string name;
  std::vector<Requirement> requirements;  ///< by party; no version suits all of them
};

/// A name on which parties disagree that cannot stand together: of several the one that the
/// shortest chains lead to. None when they disagree only on several names taken together.
std::optional<ContestedName> findContested(pathfinder::VersionRepository& repository,
                                           const std::vector<Candidates>& parties);

}  // namespace tarn::evolution::catalogue
