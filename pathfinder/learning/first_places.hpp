#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pathfinder/learning/last_steps.hpp"
#include "pathfinder/learning/plan_solver.hpp"

namespace tarn::evolution::pathfinder {

/// A plan as the hops of its steps.
struct PlannedWay {
  std::vector<NodeIndex> start;              ///< by name
  std::vector<std::vector<ArcIndex>> steps;  ///< by step and name: the hop made; none for no hop
};

/// Finds, among plans whose step weights are decided, the one that comes first: by the place of its
/// source, and then by the combination of hops of its first step and what links bring in, of the
/// second, and so on.
class FirstPlaces {
 public:
  /// `steps`: those of the plans; `decided`: what has to be true for it.
  /// `links`: null if no name can be brought in; `start`: null when plans begin at sources.
  FirstPlaces(PlanSolver& plans, const LastSteps& steps, Literal decided, const LinkChoices* links,
              const OpenStart* start)
      : plans_(plans), steps_(steps), decided_(decided), links_(links), start_(start) {}

  PlannedWay find();

 private:
  struct Made {
    ArcIndex arc;
    std::uint32_t step;  // counted from the last one, as LastSteps does
  };

  /// What a plan does, by name.
  struct Plan {
    std::vector<NodeIndex> begun;
    std::vector<std::vector<Made>> made;
  };

  void decideSource();
  void decideStart();
  void decideLinks(std::uint32_t step);
  template <class IsAtHand, class IsChosen>
  std::size_t decideGroup(std::span<const LinkChoices::Group> groups, const IsAtHand& isAtHand,
                          const IsChosen& isChosen);
  void decideStep(std::uint32_t step);
  Plan planFound() const;
  static ArcIndex madeIn(const Plan& plan, NameIndex name, std::uint32_t step);
  std::size_t digitOf(const Plan& plan, NameIndex name, std::uint32_t step) const;
  bool comesFirst(const Plan& plan, NameIndex end, std::uint32_t step) const;
  bool isAbsent(NameIndex name) const { return plans_.network.nodes[held_[name]].isAbsent; }
  std::vector<NameIndex> movingBelow(NameIndex end, std::uint32_t step, std::size_t most) const;
  bool isAnyLower(const std::vector<NameIndex>& names, std::uint32_t step);
  Literal lowerThan(NameIndex name, ArcIndex arc, std::uint32_t step);
  void decide(NameIndex first, NameIndex end, std::uint32_t step);
  void decideHop(NameIndex name, std::uint32_t step);
  std::vector<ArcIndex> takeStep(std::uint32_t step);

  PlanSolver& plans_;
  const LastSteps& steps_;
  const Literal decided_;
  const LinkChoices* const links_;
  const OpenStart* const start_;

  Plan atHand_;                  // in which all that is decided holds
  std::vector<NodeIndex> held_;  // by name, before the step that is being decided
};

}  // namespace tarn::evolution::pathfinder
