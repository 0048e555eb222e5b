// The clauses, for nodes v, w, x of a network:
//
//   way      held(v) -> starts(v) or one arc into v; held(v) -> ends(v) or one arc out of v; an arc
//            that is used joins nodes that are held; one start and one end for each name, which fit
//            one source and one target
//   order    for incompatible v and w one literal o: true, v is left no later than w is entered;
//            false, w is left no later than v is entered. What a name starts at was never entered,
//            what it ends at is never left.
//   links    an arc by which links bring a name in -> some node that needs the name is entered, no
//            later than the name; "absent" is incompatible with such nodes, so it is no earlier
//            either. Where the arc is not used, nothing needs that literal to be true. A start that
//            nothing selects -> one of the starts that need it
//   circles  of two names: v left before w is entered, so all that comes before v is left before
//            all that comes after w is entered
//
// Consequences of the last kind are given for all pairs where they are few and otherwise for
// neighbouring ones only; the rest is met as circles.
//
// Some others follow as well, and are given for speed. Ways neither branch nor merge, so a name
// that starts once ends once, and the reverse: each of "one start", "one source" and "one end"
// follows from the others, and so does that no arc leads into a start or out of an end.

#include "pathfinder/learning/plan_formula.hpp"

#include <algorithm>
#include <array>
#include <map>

namespace tarn::evolution::pathfinder {

namespace {

/// As many incompatible pairs of two names have all their consequences given.
constexpr std::size_t fewPairs = 100;

}  // namespace

PlanFormula::PlanFormula(const PlanNetwork& network, SatSolver& solver, Names names)
    : network_(network),
      solver_(solver),
      always_(solver.newVariable()),
      isPresent_(network.names.size(), always_),
      startsAt_(network.nodes.size(), -always_),
      endsAt_(network.nodes.size(), -always_),
      orders_(network.nodes.size()),
      broughtInWith_(network.nodes.size()) {
  solver_.addClause({always_});
  if (names == Names::Any) {
    for (Literal& present : isPresent_) present = solver.newVariable();
  }
  for (std::size_t i = 0; i < network.nodes.size(); ++i) isHeld_.push_back(solver.newVariable());
  for (std::size_t i = 0; i < network.arcs.size(); ++i) isUsed_.push_back(solver.newVariable());
  addSources();
  addTargets();
  for (NodeIndex node = 0; node < network.nodes.size(); ++node) addWay(node);
  findWhatComesBefore();
  for (const PlanNetwork::Neighbours& neighbours : network.neighbours) addNeighbours(neighbours);
  addBringingIn();
  addOpenStarts();
}

void PlanFormula::addSources() {
  for (NameIndex name = 0; name < network_.starts.size(); ++name) {
    const std::vector<NodeIndex>& nodes = network_.starts[name];
    std::vector<Literal> starts;
    for (const NodeIndex node : nodes) {
      startsAt_[node] = nodes.size() == 1 ? isPresent_[name] : solver_.newVariable();
      starts.push_back(startsAt_[node]);
    }
    addOneIfPresent(name, starts);
  }
  if (!network_.starts.empty()) return;
  for (std::size_t i = 0; i < network_.sources.size(); ++i) {
    isSource_.push_back(network_.sources.size() == 1 ? always_ : solver_.newVariable());
  }
  solver_.addExactlyOne(isSource_);
  std::map<NodeIndex, std::vector<Literal>> startingIn;
  for (std::size_t i = 0; i < network_.sources.size(); ++i) {
    for (const NodeIndex node : network_.sources[i]) {
      startingIn[node].push_back(isSource_[i]);
    }
  }
  for (const auto& [node, sources] : startingIn) startsAt_[node] = anyOf(sources);
}

void PlanFormula::addTargets() {
  std::vector<Literal> isTarget;
  for (std::size_t i = 0; i < network_.targets.size(); ++i) {
    isTarget.push_back(network_.targets.size() == 1 ? always_ : solver_.newVariable());
  }
  solver_.addClause(isTarget);
  for (NameIndex name = 0; name < network_.names.size(); ++name) {
    const auto& [first, end] = network_.names[name];
    std::vector<Literal> ends;
    const bool isFixed = network_.targets.size() == 1 && network_.targets[0][name].size() == 1;
    for (NodeIndex node = first; node < end; ++node) {
      if (isFixed && node != network_.targets[0][name].front()) continue;
      endsAt_[node] = isFixed ? always_ : solver_.newVariable();
      ends.push_back(endsAt_[node]);
    }
    addOneIfPresent(name, ends);
    for (std::size_t i = 0; i < network_.targets.size() && !isFixed; ++i) {
      const auto& wanted = network_.targets[i][name];
      if (wanted.empty()) continue;
      std::vector<Literal> clause{-isTarget[i]};
      for (const NodeIndex node : wanted) clause.push_back(endsAt_[node]);
      solver_.addClause(clause);
    }
  }
}

void PlanFormula::addWay(NodeIndex node) {
  const PlanNetwork::Node& itself = network_.nodes[node];
  const Literal held = isHeld_[node];
  const auto addSide = [&](const std::vector<ArcIndex>& arcs, Literal isLast) {
    std::vector<Literal> used;
    for (const ArcIndex arc : arcs) {
      used.push_back(isUsed_[arc]);
      solver_.addClause({-isUsed_[arc], held});
      solver_.addClause({-isUsed_[arc], -isLast});
    }
    solver_.addAtMostOne(used);
    solver_.addClause({-isLast, held});
    used.push_back(isLast);
    used.push_back(-held);
    solver_.addClause(used);
  };
  addSide(itself.in, startsAt_[node]);
  addSide(itself.out, endsAt_[node]);
}

/// Dependencies make no cycles, so what is brought in is so, in the end, because of a hop.
void PlanFormula::addBringingIn() {
  for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) {
    if (network_.arcs[arc].hop == PlannedHop::None) addBringingIn(arc);
  }
}

void PlanFormula::addBringingIn(ArcIndex arc) {
  const NodeIndex entered = network_.arcs[arc].to;
  std::vector<Literal> clause{-isUsed_[arc]};
  for (const NodeIndex needing : network_.nodes[entered].needing) {
    const Literal isBecause = solver_.newVariable();
    solver_.addClause({-isBecause, isHeld_[needing]});
    solver_.addClause({-isBecause, -startsAt_[needing]});
    broughtInWith_[needing].push_back({entered, isBecause});
    clause.push_back(isBecause);
  }
  solver_.addClause(clause);
}

void PlanFormula::addOpenStarts() {
  for (NameIndex name = 0; name < network_.starts.size(); ++name) {
    if (!network_.mayBeAbsent[name]) continue;
    for (const NodeIndex node : network_.starts[name]) {
      if (network_.nodes[node].isAbsent) continue;
      std::vector<Literal> clause{-startsAt_[node]};
      for (const NodeIndex needing : network_.nodes[node].needing) {
        clause.push_back(startsAt_[needing]);
      }
      solver_.addClause(clause);
    }
  }
}

/// That a node is left no later than another one is entered, or the reverse, if both are held.
Literal PlanFormula::addOrder(NodeIndex left, NodeIndex right) {
  const Literal order = solver_.newVariable();
  const Literal heldLeft = isHeld_[left];
  const Literal heldRight = isHeld_[right];
  solver_.addClause({-startsAt_[left], -heldRight, order});
  solver_.addClause({-startsAt_[right], -heldLeft, -order});
  solver_.addClause({-endsAt_[left], -heldRight, -order});
  solver_.addClause({-endsAt_[right], -heldLeft, order});
  orders_[left].push_back({right, order});
  orders_[right].push_back({left, -order});
  return order;
}

void PlanFormula::addNeighbours(const PlanNetwork::Neighbours& neighbours) {
  std::vector<Literal> orders;
  orders.reserve(neighbours.incompatible.size());
  for (const auto& [left, right] : neighbours.incompatible) {
    orders.push_back(addOrder(left, right));
  }
  addConsequences(neighbours, orders);
}

void PlanFormula::addConsequences(const PlanNetwork::Neighbours& neighbours,
                                  const std::vector<Literal>& orders) {
  const auto& pairs = neighbours.incompatible;
  const auto isBeforeOrSame = [this](NodeIndex first, NodeIndex second) {
    return first == second || comesBefore(first, second);
  };
  const auto addConsequence = [&](std::size_t from, std::size_t to) {
    std::vector<Literal> clause{-orders[from], orders[to], -isHeld_[pairs[from].first],
                                -isHeld_[pairs[from].second]};
    if (pairs[to].first != pairs[from].first) clause.push_back(-isHeld_[pairs[to].first]);
    if (pairs[to].second != pairs[from].second) clause.push_back(-isHeld_[pairs[to].second]);
    solver_.addClause(clause);
  };
  if (pairs.size() <= fewPairs) {
    for (std::size_t from = 0; from < pairs.size(); ++from) {
      for (std::size_t to = 0; to < pairs.size(); ++to) {
        if (from != to && isBeforeOrSame(pairs[to].first, pairs[from].first) &&
            isBeforeOrSame(pairs[from].second, pairs[to].second)) {
          addConsequence(from, to);
        }
      }
    }
    return;
  }
  std::map<std::pair<NodeIndex, NodeIndex>, std::size_t> places;
  for (std::size_t i = 0; i < pairs.size(); ++i) places.emplace(pairs[i], i);
  for (std::size_t from = 0; from < pairs.size(); ++from) {
    const auto& [left, right] = pairs[from];
    for (const ArcIndex arc : network_.nodes[left].in) {
      const auto to = places.find({network_.arcs[arc].from, right});
      if (to != places.end()) addConsequence(from, to->second);
    }
    for (const ArcIndex arc : network_.nodes[right].out) {
      const auto to = places.find({left, network_.arcs[arc].to});
      if (to != places.end()) addConsequence(from, to->second);
    }
  }
}

void PlanFormula::forbidTogether(std::span<const NodeIndex> nodes, Literal unless) {
  std::vector<Literal> clause{unless};
  for (const NodeIndex node : nodes) clause.push_back(-isHeld_[node]);
  for (const NodeIndex left : nodes) {
    for (const NodeIndex entered : nodes) {
      if (left == entered) continue;
      const auto known = std::find_if(orders_[left].begin(), orders_[left].end(),
                                      [&](const Order& order) { return order.entered == entered; });
      if (known != orders_[left].end()) {
        clause.push_back(known->literal);
        continue;
      }
      // Here both may be false: then the two overlap.
      const Literal order = solver_.newVariable();
      solver_.addClause({-order, -startsAt_[entered], -isHeld_[left]});
      solver_.addClause({-order, -endsAt_[left], -isHeld_[entered]});
      orders_[left].push_back({entered, order});
      clause.push_back(order);
    }
  }
  solver_.addClause(clause);
}

bool PlanFormula::comesBefore(NodeIndex first, NodeIndex second) const {
  const PlanNetwork::Name& name = network_.names[network_.nodes[second].name];
  return ConstBitRow(&before_[beforeStart_[second]], wordsFor(name.end - name.first))
      .contains(first - name.first);
}

void PlanFormula::findWhatComesBefore() {
  std::vector<bool> hasNeighbours(network_.names.size());
  for (const PlanNetwork::Neighbours& neighbours : network_.neighbours) {
    hasNeighbours[neighbours.left] = hasNeighbours[neighbours.right] = true;
  }
  beforeStart_.resize(network_.nodes.size());
  for (NameIndex index = 0; index < network_.names.size(); ++index) {
    if (!hasNeighbours[index]) continue;
    const PlanNetwork::Name& name = network_.names[index];
    const std::size_t words = wordsFor(name.end - name.first);
    for (NodeIndex node = name.first; node < name.end; ++node) {
      beforeStart_[node] = before_.size();
      before_.resize(before_.size() + words);
      BitRow row(&before_[beforeStart_[node]], words);
      for (const ArcIndex arc : network_.nodes[node].in) {
        const NodeIndex from = network_.arcs[arc].from;
        row.unite(ConstBitRow(&before_[beforeStart_[from]], words));
        row.insert(from - name.first);
      }
    }
  }
}

/// Exactly one of these if the name is present, and otherwise none.
void PlanFormula::addOneIfPresent(NameIndex name, const std::vector<Literal>& literals) {
  const Literal present = isPresent_[name];
  if (present == always_) {
    solver_.addExactlyOne(literals);
    return;
  }
  std::vector<Literal> clause{-present};
  for (const Literal literal : literals) {
    clause.push_back(literal);
    if (literal != present) solver_.addClause({-literal, present});
  }
  solver_.addClause(clause);
  solver_.addAtMostOne(literals);
}

Literal PlanFormula::anyOf(const std::vector<Literal>& literals) {
  if (literals.size() == 1) return literals.front();
  const Literal result = solver_.newVariable();
  std::vector<Literal> clause{-result};
  for (const Literal literal : literals) {
    solver_.addClause({-literal, result});
    clause.push_back(literal);
  }
  solver_.addClause(clause);
  return result;
}

}  // namespace tarn::evolution::pathfinder
