// Strongly connected components of the graph of events (Tarjan's algorithm, with a stack of its
// own). A strict edge inside a component lies on a circle; for each of them the circle with the
// fewest orders is found by a breadth-first search over orders (0-1 BFS), unless it is far longer
// than others, and forbidden by a clause: not all of these orders, of nodes that are held. Where
// the circle enters a node and leaves the one before by one hop, that hop is named too, since
// another hop would make an edge of it. So a clause holds in every plan, however long. A part of
// the circle that goes on from where a node is entered needs no hop to be named: the node before on
// the circle is the same or an earlier one.
//
// Without circles, the layers of a plan are the longest chains of components, each counting one if
// it has an ordinary hop.

#include "pathfinder/learning/order_check.hpp"

#include <algorithm>
#include <deque>
#include <limits>
#include <map>

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint32_t none = SearchSpace::none;

}  // namespace

bool OrderCheck::accept() {
  readWays();
  findEdges();
  findComponents();
  if (forbidCircles()) return false;
  countSteps();
  return true;
}

void OrderCheck::readWays() {
  ways_.assign(network_.names.size(), {});
  events_.clear();
  eventInto_.assign(network_.nodes.size(), none);
  eventOutOf_.assign(network_.nodes.size(), none);
  ordinaryHops_ = expensiveHops_ = 0;
  for (NameIndex name = 0; name < network_.names.size(); ++name) {
    Way& way = ways_[name];
    if (!solver_.isTrue(formula_.isPresent(name))) continue;
    NodeIndex node = network_.names[name].first;
    while (!solver_.isTrue(formula_.startsAt(node))) ++node;
    way.nodes.push_back(node);
    while (!solver_.isTrue(formula_.endsAt(node))) {
      const auto& out = network_.nodes[node].out;
      const ArcIndex arc = *std::find_if(out.begin(), out.end(), [this](ArcIndex candidate) {
        return solver_.isTrue(formula_.isUsed(candidate));
      });
      eventOutOf_[node] = static_cast<EventIndex>(events_.size());
      node = network_.arcs[arc].to;
      eventInto_[node] = static_cast<EventIndex>(events_.size());
      events_.push_back({arc, false});
      way.nodes.push_back(node);
      way.arcs.push_back(arc);
      if (network_.arcs[arc].hop == PlannedHop::Expensive) ++expensiveHops_;
      if (network_.arcs[arc].hop == PlannedHop::Ordinary) ++ordinaryHops_;
    }
    if (!way.arcs.empty()) events_.back().isLast = true;
  }
}

void OrderCheck::findEdges() {
  edges_.clear();
  edgesOf_.clear();
  for (const Event& event : events_) {
    edgesOf_.push_back(edges_.size());
    const auto addEdges = [&](NodeIndex from, std::span<const PlanFormula::Order> orders,
                              bool isLeft) {
      for (const PlanFormula::Order& order : orders) {
        const EventIndex to = eventInto_[order.entered];
        if (to == none || !solver_.isTrue(order.literal)) continue;
        edges_.push_back({to, from, order.entered, order.literal, isLeft});
      }
    };
    const auto& [left, entered, hop, place] = network_.arcs[event.arc];
    addEdges(left, formula_.ordersOf(left), true);
    addEdges(entered, formula_.broughtInWith(entered), false);
  }
  edgesOf_.push_back(edges_.size());
}

void OrderCheck::findComponents() {
  const auto count = static_cast<EventIndex>(events_.size());
  componentOf_.assign(count, none);
  components_ = 0;
  std::vector<std::uint32_t> number(count, none);
  std::vector<std::uint32_t> lowest(count);
  std::vector<EventIndex> open;
  std::uint32_t numbered = 0;
  struct Visit {
    EventIndex event;
    std::size_t edge;   // the next one to follow
    bool isStrictLeft;  // whether the next hop of the name has not been followed yet
  };
  std::vector<Visit> trail;
  const auto enter = [&](EventIndex event) {
    number[event] = lowest[event] = numbered++;
    open.push_back(event);
    trail.push_back({event, edgesOf_[event], !events_[event].isLast});
  };
  for (EventIndex root = 0; root < count; ++root) {
    if (number[root] == none) enter(root);
    while (!trail.empty()) {
      Visit& visit = trail.back();
      const EventIndex event = visit.event;
      if (visit.isStrictLeft || visit.edge < edgesOf_[event + 1]) {
        const EventIndex next = visit.isStrictLeft ? event + 1 : edges_[visit.edge++].to;
        visit.isStrictLeft = false;
        if (number[next] == none) {
          enter(next);
        } else if (componentOf_[next] == none) {
          lowest[event] = std::min(lowest[event], number[next]);
        }
        continue;
      }
      trail.pop_back();
      if (!trail.empty()) {
        lowest[trail.back().event] = std::min(lowest[trail.back().event], lowest[event]);
      }
      if (lowest[event] != number[event]) continue;
      while (componentOf_[event] == none) {
        componentOf_[open.back()] = components_;
        open.pop_back();
      }
      ++components_;
    }
  }
}

/// Whether there were any. Forbids those that are not much longer than the shortest one: a long one
/// makes a weak clause, and mostly is none any more when the shorter ones are forbidden.
bool OrderCheck::forbidCircles() {
  std::vector<Circle> circles;
  std::size_t most = std::numeric_limits<std::size_t>::max();
  arrivals_.assign(events_.size(), {});
  reached_.clear();
  for (EventIndex event = 0; event < events_.size(); ++event) {
    if (events_[event].isLast || componentOf_[event] != componentOf_[event + 1]) continue;
    Circle circle = circleThrough(event, most);
    if (circle.empty()) continue;
    most = std::min(most, 3 * circle.size() + 8);
    circles.push_back(std::move(circle));
  }
  for (const Circle& circle : circles) {
    if (circle.size() <= most) addClause(circle);
  }
  return !circles.empty();
}

/// The circle with the fewest orders from the event after this one back to it; empty when these are
/// more than `most`.
OrderCheck::Circle OrderCheck::circleThrough(EventIndex event, std::size_t most) {
  for (const EventIndex reached : reached_) arrivals_[reached] = {};
  reached_.assign({event + 1});
  arrivals_[event + 1].orders = 0;
  std::deque<EventIndex> waiting{event + 1};
  const auto reach = [&](EventIndex from, EventIndex to, const Edge* edge) {
    const std::uint32_t orders = arrivals_[from].orders + (edge == nullptr ? 0 : 1);
    if (orders > most || orders >= arrivals_[to].orders) return;
    if (componentOf_[to] != componentOf_[event]) return;
    if (arrivals_[to].orders == none) reached_.push_back(to);
    arrivals_[to] = {orders, from, edge};
    if (edge == nullptr) {
      waiting.push_front(to);
    } else {
      waiting.push_back(to);
    }
  };
  while (!waiting.empty() && waiting.front() != event) {
    const EventIndex from = waiting.front();
    waiting.pop_front();
    if (!events_[from].isLast) reach(from, from + 1, nullptr);
    for (std::size_t i = edgesOf_[from]; i < edgesOf_[from + 1]; ++i) {
      reach(from, edges_[i].to, &edges_[i]);
    }
  }
  Circle circle;
  if (arrivals_[event].orders == none) return circle;
  for (EventIndex on = event; on != event + 1; on = arrivals_[on].before) {
    if (arrivals_[on].edge != nullptr) circle.push_back(arrivals_[on].edge);
  }
  std::reverse(circle.begin(), circle.end());
  return circle;
}

void OrderCheck::addClause(const Circle& circle) {
  std::vector<Literal> clause;
  for (std::size_t i = 0; i < circle.size(); ++i) {
    const Edge& edge = *circle[i];
    const Edge& next = *circle[(i + 1) % circle.size()];
    clause.push_back(-edge.literal);
    clause.push_back(-formula_.isHeld(edge.from));
    clause.push_back(-formula_.isHeld(edge.entered));
    const EventIndex joined = eventInto_[edge.entered];
    if (next.isLeft && joined == eventOutOf_[next.from]) {
      clause.push_back(-formula_.isUsed(events_[joined].arc));
    }
  }
  std::sort(clause.begin(), clause.end());
  clause.erase(std::unique(clause.begin(), clause.end()), clause.end());
  solver_.addClause(clause);
}

/// Each layer is a step, and each component between two layers.
std::vector<std::vector<ArcIndex>> OrderCheck::steps() const {
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::vector<ArcIndex>> steps;
  for (EventIndex event = 0; event < events_.size(); ++event) {
    const std::uint32_t phase = phaseOf_[componentOf_[event]];
    const bool isLayer = phase % 2 == 1;
    const std::uint32_t place = isLayer ? 0 : components_ - componentOf_[event];
    steps[{phase, place}].push_back(events_[event].arc);
  }
  std::vector<std::vector<ArcIndex>> result;
  result.reserve(steps.size());
  for (auto& [place, arcs] : steps) result.push_back(std::move(arcs));
  return result;
}

void OrderCheck::countSteps() {
  std::vector<std::uint32_t> own(components_);
  std::vector<std::uint32_t> before(components_);
  std::vector<std::vector<EventIndex>> members(components_);
  for (EventIndex event = 0; event < events_.size(); ++event) {
    members[componentOf_[event]].push_back(event);
    const PlannedHop hop = network_.arcs[events_[event].arc].hop;
    if (hop == PlannedHop::Ordinary) own[componentOf_[event]] = 1;
  }
  phaseOf_.resize(components_);
  ordinarySteps_ = 0;
  for (std::uint32_t component = components_; component-- > 0;) {  // what comes first, first
    const std::uint32_t layer = before[component] + own[component];
    phaseOf_[component] = 2 * layer - own[component];
    ordinarySteps_ = std::max(ordinarySteps_, layer);
    for (const EventIndex event : members[component]) {
      if (!events_[event].isLast) {
        std::uint32_t& next = before[componentOf_[event + 1]];
        next = std::max(next, layer);
      }
      for (std::size_t i = edgesOf_[event]; i < edgesOf_[event + 1]; ++i) {
        // No later: two components with ordinary hops may be in one layer.
        const std::uint32_t to = componentOf_[edges_[i].to];
        const std::uint32_t shared = own[component] & own[to];
        if (to != component) before[to] = std::max(before[to], layer - shared);
      }
    }
  }
}

}  // namespace tarn::evolution::pathfinder
