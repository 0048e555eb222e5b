#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// The linked metamodels that may be picked for one name. Refers to what it is made from.
struct Alternatives {
  const std::u16string* name;
  const std::vector<std::shared_ptr<LinkedMetamodel>>* candidates;
};

/// What is known of the links of candidates.
enum class Links {
  Any,
  /// With each link, all that it links is linked too, and nothing is linked any more: so it is with
  /// what a repository has linked.
  Closed,
};

/// `VersionBaseline::combine` with the names visited in the order given.
std::vector<VersionBaseline> combineInOrder(const std::vector<Alternatives>& alternatives,
                                            Links links);

}  // namespace tarn::evolution::pathfinder
