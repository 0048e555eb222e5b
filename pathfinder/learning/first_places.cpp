// The digits of a step's combination are decided from the most significant one down, the last
// name's, each at the least that some plan has. A plan is at hand in which all that is decided
// holds. A digit that is 0 in it is the least already; a plan with a lower digit of some name is
// asked for. Mostly there is none, so several names are asked about at once: when none of them can
// have a lower digit, whatever the others do, all are decided as in the plan at hand.

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
  held_ = begun_;
  PlannedWay way{begun_, {}};
  for (std::uint32_t step = steps_.count(); step > 0; --step) {
    decideStep(step);
    way.steps.push_back(takeStep(step));
  }
  return way;
}

/// Decides on the first source that a plan can begin at.
void FirstPlaces::decideSource() {
  for (std::size_t i = 0; i < plans_.network.sources.size(); ++i) {
    const Literal isSource = plans_.formula.isSource(i);
    if (!plans_.findPlan(std::array{decided_, isSource})) continue;
    readPlan();
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
  readPlan();
  start_->visitChoices(
      [this](std::span<const VersionIndex> versions) { return decideStartOf(versions); });
}

std::size_t FirstPlaces::decideStartOf(std::span<const VersionIndex> versions) {
  while (true) {
    const auto isBegun = [this](VersionIndex version) {
      return std::any_of(begun_.begin(), begun_.end(), [&](NodeIndex node) {
        return plans_.network.nodes[node].version == version;
      });
    };
    const auto chosen = std::find_if(versions.begin(), versions.end(), isBegun);
    std::vector<Literal> earlier;
    for (auto version = versions.begin(); version != chosen; ++version) {
      for (const auto& nodes : plans_.network.starts) {
        for (const NodeIndex node : nodes) {
          if (plans_.network.nodes[node].version != *version) continue;
          earlier.push_back(plans_.formula.startsAt(node));
        }
      }
    }
    if (!earlier.empty() && plans_.findPlanWith(earlier, std::array{decided_})) {
      readPlan();
      continue;
    }
    for (const NodeIndex node : begun_) {
      if (plans_.network.nodes[node].version != *chosen) continue;
      plans_.sat.addClause({-decided_, plans_.formula.startsAt(node)});
    }
    return static_cast<std::size_t>(chosen - versions.begin());
  }
}

void FirstPlaces::readPlan() {
  begun_.clear();
  for (NameIndex name = 0; name < made_.size(); ++name) {
    begun_.push_back(plans_.check.nodesOf(name).front());
    made_[name].clear();
    std::uint32_t step = steps_.count();
    for (const ArcIndex arc : plans_.check.arcsOf(name)) {
      const NodeIndex entered = plans_.network.arcs[arc].to;
      while (step > 1 && !plans_.sat.isTrue(steps_.isEnteredBefore(entered, step - 1))) --step;
      made_[name].push_back({arc, step});
    }
  }
}

/// The hop that the plan at hand makes in a step; none for no hop.
ArcIndex FirstPlaces::madeIn(NameIndex name, std::uint32_t step) const {
  for (const Made& made : made_[name]) {
    if (made.step == step) return made.arc;
  }
  return SearchSpace::none;
}

void FirstPlaces::decideStep(std::uint32_t step) {
  auto end = static_cast<NameIndex>(made_.size());  // the names from here on are decided
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
    } else if (moving.size() == 1) {
      readPlan();
    } else {
      most = moving.size() / 2;
    }
  }
  decide(0, end, step);
}

/// The last names before one that hop in the step, the last one first.
std::vector<NameIndex> FirstPlaces::movingBelow(NameIndex end, std::uint32_t step,
                                                std::size_t most) const {
  std::vector<NameIndex> result;
  for (NameIndex name = end; name-- > 0 && result.size() < most;) {
    if (madeIn(name, step) != SearchSpace::none) result.push_back(name);
  }
  return result;
}

/// Whether in some plan one of the names has a lower digit than in the plan at hand.
bool FirstPlaces::isAnyLower(const std::vector<NameIndex>& names, std::uint32_t step) {
  std::vector<Literal> lower;
  for (const NameIndex name : names) lower.push_back(lowerThan(name, madeIn(name, step), step));
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
    const ArcIndex arc = madeIn(name, step);
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
}

/// The hops of a step that is decided; goes on to the one after it.
std::vector<ArcIndex> FirstPlaces::takeStep(std::uint32_t step) {
  std::vector<ArcIndex> result;
  for (NameIndex name = 0; name < made_.size(); ++name) {
    const ArcIndex arc = result.emplace_back(madeIn(name, step));
    if (arc != SearchSpace::none) held_[name] = plans_.network.arcs[arc].to;
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
