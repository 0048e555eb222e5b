#pragma once

#include <span>
#include <vector>

#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/sat_solver.hpp"

namespace tarn::evolution::pathfinder {

/// A formula whose models are plans without a clock: which way each name goes, and in which order
/// versions are left and entered that cannot stand together.
///
/// A version is held from the hop into it to the hop out of it. Where two versions of different
/// names cannot stand together, one is left no later than the other is entered, in the same step at
/// the latest. Not in the formula is that these orders contradict one another in circles, which is
/// forbidden as it is met (see `OrderCheck`).
class PlanFormula {
 public:
  /// Which names a plan is about: all of the network; or any of them, as if there were no others.
  /// The latter for open starts.
  enum class Names { All, Any };

  PlanFormula(const PlanNetwork& network, SatSolver& solver, Names names = Names::All);

  /// Whether the plan is about the name.
  Literal isPresent(NameIndex name) const { return isPresent_[name]; }

  Literal isHeld(NodeIndex node) const { return isHeld_[node]; }
  Literal isUsed(ArcIndex arc) const { return isUsed_[arc]; }

  /// Whether the name begins there, and whether it ends there.
  Literal startsAt(NodeIndex node) const { return startsAt_[node]; }
  Literal endsAt(NodeIndex node) const { return endsAt_[node]; }

  /// Whether a plan begins at a source, by its place among those of the network.
  Literal isSource(std::size_t source) const { return isSource_[source]; }

  Literal always() const { return always_; }
  Literal never() const { return -always_; }

  /// That a node, if both are held, is left no later than another one is entered.
  struct Order {
    NodeIndex entered;
    Literal literal;
  };

  /// All that may be said of when a node is left.
  std::span<const Order> ordersOf(NodeIndex left) const { return orders_[left]; }

  /// That a node, if it is entered, is so no later than one that is brought in because of it.
  std::span<const Order> broughtInWith(NodeIndex needing) const { return broughtInWith_[needing]; }

  /// Forbids that all of these nodes are held at the same time, of which each two may be.
  void forbidTogether(std::span<const NodeIndex> nodes) { forbidTogether(nodes, never()); }

  /// The same unless a literal is true.
  void forbidTogether(std::span<const NodeIndex> nodes, Literal unless);

 private:
  void addSources();
  void addTargets();
  void addWay(NodeIndex node);
  void addNeighbours(const PlanNetwork::Neighbours& neighbours);
  void addBringingIn();
  void addBringingIn(ArcIndex arc);
  void addOpenStarts();
  Literal addOrder(NodeIndex left, NodeIndex right);
  void addConsequences(const PlanNetwork::Neighbours& neighbours,
                       const std::vector<Literal>& orders);
  void addOneIfPresent(NameIndex name, const std::vector<Literal>& literals);
  Literal anyOf(const std::vector<Literal>& literals);
  void findWhatComesBefore();

  /// Whether every way that holds both nodes, which are of one name, holds the first one earlier.
  bool comesBefore(NodeIndex first, NodeIndex second) const;

  const PlanNetwork& network_;
  SatSolver& solver_;
  Literal always_;
  std::vector<Literal> isPresent_;  // by name
  std::vector<Literal> isHeld_;
  std::vector<Literal> isUsed_;
  std::vector<Literal> startsAt_;
  std::vector<Literal> endsAt_;
  std::vector<Literal> isSource_;
  std::vector<std::vector<Order>> orders_;
  std::vector<std::vector<Order>> broughtInWith_;

  // For each node of a name that has neighbours, as bits, the nodes of its name that lie on ways to
  // it.
  std::vector<std::size_t> beforeStart_;
  std::vector<BitWord> before_;
};

}  // namespace tarn::evolution::pathfinder
