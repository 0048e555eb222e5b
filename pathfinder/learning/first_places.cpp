// The digits of a step's combination are decided from the most significant one down, the last
// name's, each at the least that some plan has. A plan is at hand in which all that is decided
// holds. A digit that is 0 in it is the least already; a plan with a lower digit of some name is
// asked for. Mostly there is none, so several names are asked about at once: when none of them can
// have a lower digit, whatever the others do, all are decided as in the plan at hand. Otherwise the
// plan that is found takes the other one's place if it comes first, and the names before the one
// that is lower in it are asked about next.
//
// Then what links bring in in that step, in the order in which combination lists the baselines that
// the hops lead to.

#include "pathfinder/learning/first_places.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace tarn::evolution::pathfinder {

PlannedWay FirstPlaces::find() {
  if (start_ == nullptr) {
    decideSource();
  } else {
    decideStart();
  }
  held_ = atHand_.begun;
  PlannedWay way{atHand_.begun, {}};
  for (std::uint32_t step = steps_.count(); step > 0; --step) {
    decideStep(step);
    if (links_ != nullptr) decideLinks(step);
    way.steps.push_back(takeStep(step));
  }
  return way;
}

/// Decides on the first source that a plan can begin at.
void FirstPlaces::decideSource() {
  for (std::size_t i = 0; i < plans_.network.sources.size(); ++i) {
    const Literal isSource = plans_.formula.isSource(i);
    if (!plans_.findPlan(std::array{decided_, isSource})) continue;
    atHand_ = planFound();
    plans_.sat.addClause({-decided_, isSource});
    return;
  }
  throw std::logic_error("no plan has the step weights that were proven");
}

/// Decides on the first consistent choice that a plan can begin with.
void FirstPlaces::decideStart() {
  if (!plans_.findPlan(std::array{decided_})) {
    throw std::logic_error("no plan has the step weights that were proven");
  }
  atHand_ = planFound();
  const auto isAtHand = [this](NodeIndex node) {
    return atHand_.begun[plans_.network.nodes[node].name] == node;
  };
  const auto isChosen = [this](NodeIndex node) { return plans_.formula.startsAt(node); };
  links_->visitChoices(start_->selection, [&](std::span<const LinkChoices::Group> groups) {
    return decideGroup(groups, isAtHand, isChosen);
  });
}

/// Decides which versions links bring in in a step, its hops being decided.
void FirstPlaces::decideLinks(std::uint32_t step) {
  VersionSelection selection;
  bool isAnyEntered = false;
  for (NameIndex name = 0; name < plans_.network.names.size(); ++name) {
    const bool isOpen = isAbsent(name);
    const ArcIndex arc = madeIn(atHand_, name, step);
    isAnyEntered |= isOpen && arc != SearchSpace::none;
    const NodeIndex after = arc == SearchSpace::none ? held_[name] : plans_.network.arcs[arc].to;
    selection.push_back(isOpen ? SearchSpace::none : plans_.network.nodes[after].version);
  }
  if (isAnyEntered) {
    const auto isAtHand = [&](NodeIndex node) {
      const ArcIndex arc = madeIn(atHand_, plans_.network.nodes[node].name, step);
      return arc != SearchSpace::none && plans_.network.arcs[arc].to == node;
    };
    // A name that is absent before the step has been brought in when the step is over.
    const auto isChosen = [&](NodeIndex node) { return steps_.isEnteredBefore(node, step - 1); };
    links_->visitChoices(std::move(selection), [&](std::span<const LinkChoices::Group> groups) {
      return decideGroup(groups, isAtHand, isChosen);
    });
  }
  for (NameIndex name = 0; name < plans_.network.names.size(); ++name) {
    if (isAbsent(name)) decideHop(name, step);
  }
}

/// Decides on the first of some groups of versions that a plan can choose; returns its place.
/// `isAtHand` tells whether the plan at hand chooses a node, `isChosen` the literal that it does.
template <class IsAtHand, class IsChosen>
std::size_t FirstPlaces::decideGroup(std::span<const LinkChoices::Group> groups,
                                     const IsAtHand& isAtHand, const IsChosen& isChosen) {
  const auto literalOf = [&](const LinkChoices::Group& group) {
    std::vector<Literal> literals;
    for (const VersionIndex version : group) {
      const NodeIndex node = plans_.network.nodeOf[version];
      literals.push_back(node == SearchSpace::none ? plans_.formula.never() : isChosen(node));
    }
    return plans_.allOf(literals);
  };
  const auto isGroupAtHand = [&](const LinkChoices::Group& group) {
    return std::all_of(group.begin(), group.end(), [&](VersionIndex version) {
      const NodeIndex node = plans_.network.nodeOf[version];
      return node != SearchSpace::none && isAtHand(node);
    });
  };
  std::vector<Literal> literals;
  for (const LinkChoices::Group& group : groups) literals.push_back(literalOf(group));
  while (true) {
    const auto place = static_cast<std::size_t>(
        std::find_if(groups.begin(), groups.end(), isGroupAtHand) - groups.begin());
    const auto earlier = std::span<const Literal>(literals).first(place);
    if (!earlier.empty() && plans_.findPlanWith(earlier, std::array{decided_})) {
      atHand_ = planFound();
      continue;
    }
    if (place < groups.size()) plans_.sat.addClause({-decided_, literals[place]});
    return place;
  }
}

/// The plan that the solver has found last.
FirstPlaces::Plan FirstPlaces::planFound() const {
  Plan plan;
  for (NameIndex name = 0; name < plans_.network.names.size(); ++name) {
    plan.begun.push_back(plans_.check.nodesOf(name).front());
    std::vector<Made>& made = plan.made.emplace_back();
    std::uint32_t step = steps_.count();
    for (const ArcIndex arc : plans_.check.arcsOf(name)) {
      const NodeIndex entered = plans_.network.arcs[arc].to;
      while (step > 1 && !plans_.sat.isTrue(steps_.isEnteredBefore(entered, step - 1))) --step;
      made.push_back({arc, step});
    }
  }
  return plan;
}

/// The hop that a plan makes in a step; none for no hop.
ArcIndex FirstPlaces::madeIn(const Plan& plan, NameIndex name, std::uint32_t step) {
  for (const Made& made : plan.made[name]) {
    if (made.step == step) return made.arc;
  }
  return SearchSpace::none;
}

std::size_t FirstPlaces::digitOf(const Plan& plan, NameIndex name, std::uint32_t step) const {
  const ArcIndex arc = madeIn(plan, name, step);
  return arc == SearchSpace::none ? 0 : std::size_t{plans_.network.arcs[arc].place} + 1;
}

/// Whether a plan has a lower digit than the one at hand where they differ first in a step, as to
/// the names before one, those after it being decided.
bool FirstPlaces::comesFirst(const Plan& plan, NameIndex end, std::uint32_t step) const {
  for (NameIndex name = end; name-- > 0;) {
    if (isAbsent(name)) continue;
    const std::size_t digit = digitOf(plan, name, step);
    const std::size_t digitAtHand = digitOf(atHand_, name, step);
    if (digit != digitAtHand) return digit < digitAtHand;
  }
  return false;
}

void FirstPlaces::decideStep(std::uint32_t step) {
  // The names from here on are decided.
  auto end = static_cast<NameIndex>(plans_.network.names.size());
  std::size_t most = 1;
  while (true) {
    const std::vector<NameIndex> moving = movingBelow(end, step, most);
    if (moving.empty()) break;
    if (moving.size() == 1) {
      decide(moving.front() + 1, end, step);
      end = moving.front() + 1;
    }
    if (!isAnyLower(moving, step)) {
      decide(moving.back(), end, step);
      end = moving.back();
      most *= 2;
      continue;
    }
    Plan found = planFound();
    const auto isLower = [&](NameIndex name) {
      return digitOf(found, name, step) < digitOf(atHand_, name, step);
    };
    const auto lower = std::find_if(moving.begin(), moving.end(), isLower);
    most = static_cast<std::size_t>(std::max<std::ptrdiff_t>(1, lower - moving.begin()));
    if (comesFirst(found, end, step)) atHand_ = std::move(found);
  }
  decide(0, end, step);
}

/// The last names before one that hop in the step, the last one first.
std::vector<NameIndex> FirstPlaces::movingBelow(NameIndex end, std::uint32_t step,
                                                std::size_t most) const {
  std::vector<NameIndex> result;
  for (NameIndex name = end; name-- > 0 && result.size() < most;) {
    if (!isAbsent(name) && madeIn(atHand_, name, step) != SearchSpace::none) result.push_back(name);
  }
  return result;
}

/// Whether in some plan one of the names has a lower digit than in the plan at hand.
bool FirstPlaces::isAnyLower(const std::vector<NameIndex>& names, std::uint32_t step) {
  std::vector<Literal> lower;
  lower.reserve(names.size());
  for (const NameIndex name : names)
    lower.push_back(lowerThan(name, madeIn(atHand_, name, step), step));
  return plans_.findPlanWith(lower, std::array{decided_});
}

/// A new literal that is true only if the name makes a hop before that one in the step, or none.
Literal FirstPlaces::lowerThan(NameIndex name, ArcIndex arc, std::uint32_t step) {
  const auto& arcs = plans_.network.arcs;
  const Literal result = plans_.sat.newVariable();
  for (const ArcIndex other : plans_.network.nodes[held_[name]].out) {
    if (arcs[other].place < arcs[arc].place) continue;
    plans_.sat.addClause({-result, -plans_.formula.isUsed(other),
                          -steps_.isEnteredBefore(arcs[other].to, step - 1)});
  }
  return result;
}

/// Decides what names do in a step, as in the plan at hand.
void FirstPlaces::decide(NameIndex first, NameIndex end, std::uint32_t step) {
  for (NameIndex name = first; name < end; ++name) {
    if (!isAbsent(name)) decideHop(name, step);
  }
}

/// The same for a name; for one that is absent, what links bring in.
void FirstPlaces::decideHop(NameIndex name, std::uint32_t step) {
  const ArcIndex arc = madeIn(atHand_, name, step);
  for (const ArcIndex other : plans_.network.nodes[held_[name]].out) {
    const Literal isUsed = plans_.formula.isUsed(other);
    const Literal isEntered = steps_.isEnteredBefore(plans_.network.arcs[other].to, step - 1);
    if (other == arc) {
      // Either follows from the other, given what the step weighs.
      plans_.sat.addClause({-decided_, isUsed});
      plans_.sat.addClause({-decided_, isEntered});
    } else {
      plans_.sat.addClause({-decided_, -isUsed, -isEntered});
    }
  }
}

/// The hops of a step that is decided; goes on to the one after it.
std::vector<ArcIndex> FirstPlaces::takeStep(std::uint32_t step) {
  std::vector<ArcIndex> result;
  for (NameIndex name = 0; name < plans_.network.names.size(); ++name) {
    const ArcIndex arc = result.emplace_back(madeIn(atHand_, name, step));
    if (arc != SearchSpace::none) held_[name] = plans_.network.arcs[arc].to;
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
