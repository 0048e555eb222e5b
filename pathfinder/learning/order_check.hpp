#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "pathfinder/learning/plan_formula.hpp"

namespace tarn::evolution::pathfinder {

/// Looks whether the orders of a model can be kept all at once, and then what the plan is.
///
/// The events of a plan are the hops that are used. A hop comes strictly later than the one before
/// of its name, and a hop out of v no later than a hop into w if v is to be left before w is
/// entered. That links bring a name in is an event as well, no earlier than the hop because of
/// which they do. The plan can be carried out if no circle of these has a strict part; the hops of
/// a circle that has none are made in one step.
class OrderCheck {
 public:
  OrderCheck(const PlanNetwork& network, PlanFormula& formula, SatSolver& solver)
      : network_(network), formula_(formula), solver_(solver) {}

  /// Whether the solver's model is a plan. Otherwise forbids what contradicts itself in it.
  bool accept();

  // Of the model accepted last:

  /// The nodes that a name goes through, and the arcs between them; none of a name that the plan is
  /// not about.
  const std::vector<NodeIndex>& nodesOf(NameIndex name) const { return ways_[name].nodes; }
  const std::vector<ArcIndex>& arcsOf(NameIndex name) const { return ways_[name].arcs; }

  std::uint64_t ordinaryHops() const { return ordinaryHops_; }
  std::uint64_t expensiveHops() const { return expensiveHops_; }

  /// One way to make the plan, with no more steps with an ordinary hop than it takes: the arcs of
  /// each step.
  std::vector<std::vector<ArcIndex>> steps() const;

  /// How many steps with an ordinary hop it takes to keep all orders.
  std::uint32_t ordinarySteps() const { return ordinarySteps_; }

 private:
  using EventIndex = std::uint32_t;

  struct Way {
    std::vector<NodeIndex> nodes;
    std::vector<ArcIndex> arcs;
  };

  /// A hop that is used.
  struct Event {
    ArcIndex arc;
    bool isLast;  ///< of its name
  };

  /// That an event comes no later than another one, because of how two nodes are ordered.
  struct Edge {
    EventIndex to;
    NodeIndex from;  // which is left, or entered, by the event that comes no later
    NodeIndex entered;
    Literal literal;
    bool isLeft;  // whether `from` is left by it
  };

  /// How a search has come to an event.
  struct Arrival {
    std::uint32_t orders = SearchSpace::none;
    EventIndex before = SearchSpace::none;
    const Edge* edge = nullptr;  // null for the next hop of the name
  };

  /// Edges in a ring; between them, each name makes its next hops.
  using Circle = std::vector<const Edge*>;

  void readWays();
  void findEdges();
  void findComponents();
  bool forbidCircles();
  Circle circleThrough(EventIndex event, std::size_t most);
  void addClause(const Circle& circle);
  void countSteps();

  const PlanNetwork& network_;
  PlanFormula& formula_;
  SatSolver& solver_;
  std::vector<Way> ways_;
  std::vector<Event> events_;
  std::vector<EventIndex> eventInto_;  // by node; none for one that is not held, or a start
  std::vector<EventIndex> eventOutOf_;
  std::vector<Edge> edges_;
  std::vector<std::size_t> edgesOf_;        // by event, and the end
  std::vector<std::uint32_t> componentOf_;  // ascending against the edges
  std::uint32_t components_ = 0;
  std::vector<std::uint32_t> phaseOf_;  // by component: 2k - 1 in the k-th layer, 2k after it
  std::vector<Arrival> arrivals_;       // by event: of the last search
  std::vector<EventIndex> reached_;     // in it
  std::uint64_t ordinaryHops_ = 0;
  std::uint64_t expensiveHops_ = 0;
  std::uint32_t ordinarySteps_ = 0;
};

}  // namespace tarn::evolution::pathfinder
