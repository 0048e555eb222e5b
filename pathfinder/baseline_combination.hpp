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

/// `VersionBaseline::combine` with the names visited in the order given.
std::vector<VersionBaseline> combineInOrder(const std::vector<Alternatives>& alternatives);

}  // namespace tarn::evolution::pathfinder
