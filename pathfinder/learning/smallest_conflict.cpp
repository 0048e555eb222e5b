// Implicit hitting sets: a set in conflict has an item outside of each set that agrees. Of the sets
// that agree some are known, each as large as can be; the first of the smallest sets that have an
// item outside of all of these is tried. If it is in conflict, it is the one that is looked for,
// for every other one has an item outside of these as well. Otherwise more items are added to it
// until none can be, which makes one more set that agrees.

#include "pathfinder/learning/smallest_conflict.hpp"

namespace tarn::evolution::pathfinder {

SmallestConflict::SmallestConflict(std::size_t items, Judge& judge)
    : judge_(judge), best_(items, true), fewest_(solver_) {
  for (std::size_t item = 0; item < items; ++item) {
    isChosen_.push_back(solver_.newVariable());
    fewest_.want(-isChosen_.back(), 1);
  }
}

void SmallestConflict::find() {
  judge_.reduce(best_);
  isReduced_ = true;
  while (true) {
    const ChosenItems tried = firstSmallestHittingSet();
    ChosenItems agreeing = tried;
    if (!judge_.agree(agreeing)) {
      best_ = tried;
      isProven_ = true;
      return;
    }
    addCorrection(agreeing);
  }
}

void SmallestConflict::addCorrection(const ChosenItems& agreeing) {
  std::vector<Literal> clause;
  for (std::size_t item = 0; item < agreeing.size(); ++item) {
    if (!agreeing[item]) clause.push_back(isChosen_[item]);
  }
  solver_.addClause(clause);
}

ChosenItems SmallestConflict::firstSmallestHittingSet() {
  fewest_.minimize({}, [] { return true; });
  std::vector<Literal> decided = fewest_.stillWanted();
  ChosenItems result(isChosen_.size());
  std::uint64_t left = fewest_.lowerBound();
  for (std::size_t item = 0; item < result.size() && left > 0; ++item) {
    decided.push_back(isChosen_[item]);
    result[item] = solver_.solve(decided);
    if (result[item]) {
      --left;
    } else {
      decided.back() = -isChosen_[item];
    }
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
