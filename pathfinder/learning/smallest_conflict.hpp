#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "pathfinder/learning/core_guided_minimum.hpp"
#include "pathfinder/learning/sat_solver.hpp"

namespace tarn::evolution::pathfinder {

/// Which of some items are chosen.
using ChosenItems = std::vector<bool>;

/// Finds, among sets of items that are in conflict, a smallest one; of several the one that comes
/// first when their items are compared in ascending order. What is more than a set in conflict is
/// in conflict as well.
class SmallestConflict {
 public:
  /// What knows whether items agree.
  class Judge {
   public:
    /// Whether the items agree. Then adds others until none can be added.
    virtual bool agree(ChosenItems& items) = 0;

    /// Takes away items that are in conflict as long as the others still are.
    virtual void reduce(ChosenItems& items) = 0;

   protected:
    ~Judge() = default;
  };

  /// All items are in conflict.
  SmallestConflict(std::size_t items, Judge& judge);

  /// Whoever interrupts this by an exception finds in `best` what is known.
  void find();

  /// A set in conflict: the one that is looked for, if `isProven`; of which none can be left out,
  /// if it `isReduced`.
  const ChosenItems& best() const { return best_; }
  bool isProven() const { return isProven_; }
  bool isReduced() const { return isReduced_; }

 private:
  void addCorrection(const ChosenItems& agreeing);
  ChosenItems firstSmallestHittingSet();

  Judge& judge_;
  ChosenItems best_;
  bool isProven_ = false;
  bool isReduced_ = false;
  SatSolver solver_;
  std::vector<Literal> isChosen_;  // by item
  CoreGuidedMinimum fewest_;
};

}  // namespace tarn::evolution::pathfinder
