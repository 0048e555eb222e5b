// Most literals cannot be true at all, and most of the others can be together. So each is first
// seen to be true in some plan, all those open asked for at once; what is never seen is impossible.
// Mostly the plan seen last has all that are possible. Otherwise a core-guided minimization begins
// at "all of them".
//
// Invariant: the plan at hand keeps to all that is decided.

#include "pathfinder/learning/most_true.hpp"

#include <algorithm>
#include <stdexcept>

#include "pathfinder/learning/core_guided_minimum.hpp"

namespace tarn::evolution::pathfinder {

std::uint64_t MostTrue::decide(const std::vector<Literal>& literals, Literal isDecided) {
  std::vector<Literal> open = literals;
  const std::vector<Literal> possible = takePossible(open);
  // For speed: a solver that tries them would have to take it back.
  for (const Literal literal : open) plans_.sat.addClause({-isDecided, -literal});
  CoreGuidedMinimum minimum(plans_.sat);
  for (const Literal literal : possible) minimum.want(literal, 1);
  if (!std::all_of(possible.begin(), possible.end(),
                   [this](Literal literal) { return isAtHand(literal); })) {
    minimum.minimize(assumptions_, [this] {
      if (!plans_.check.accept()) return false;
      readPlan();
      return true;
    });
  }
  for (const Literal literal : minimum.stillWanted()) {
    plans_.sat.addClause({-isDecided, literal});
  }
  return possible.size() - minimum.lowerBound();
}

/// Those that are true in some plan; the others stay.
std::vector<Literal> MostTrue::takePossible(std::vector<Literal>& open) {
  std::vector<Literal> possible;
  if (!isAnyAtHand_) {
    if (!plans_.findPlan(assumptions_)) throw std::logic_error("no plan has what was proven");
    readPlan();
  }
  while (true) {
    std::erase_if(open, [&](Literal literal) {
      if (!isAtHand(literal)) return false;
      possible.push_back(literal);
      return true;
    });
    if (open.empty() || !plans_.findPlanWith(open, assumptions_)) return possible;
    readPlan();
  }
}

void MostTrue::readPlan() {
  isAnyAtHand_ = true;
  atHand_.clear();
  for (const Literal literal : literals_) {
    if (plans_.sat.isTrue(literal)) atHand_.insert(literal);
  }
}

}  // namespace tarn::evolution::pathfinder
