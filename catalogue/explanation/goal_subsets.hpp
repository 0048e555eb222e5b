#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "catalogue/explanation/posed_question.hpp"

namespace tarn::evolution::catalogue {

using Names = std::set<std::u16string>;

/// The largest sets of goals that can be reached together.
struct GoalSubsets {
  std::vector<Names> largest;  ///< all of one size; at least one, which may be empty
  bool isProven;               ///< there are no others, of this size or larger

  /// The way to the first of them, if it was asked for.
  std::optional<Path> path = std::nullopt;
};

/// Finds them within the questions that the inquiry allows. When these do not suffice, returns one
/// set to which no goal can be added, found with up to one more question for each goal; when a
/// limit is reached, the largest set known.
GoalSubsets findLargestGoalSubsets(const PosedQuestion& question);

SelectedMetamodels restrictTo(const SelectedMetamodels& goals, const Names& names);

}  // namespace tarn::evolution::catalogue
