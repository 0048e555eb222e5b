#include "pathfinder/learning/learning_planner.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "pathfinder/learning/first_places.hpp"
#include "pathfinder/learning/least_weight.hpp"
#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/plan_solver.hpp"
#include "pathfinder/learning/step_weights.hpp"
#include "pathfinder/learning/timeline.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// The fewest steps with an ordinary hop that any plan has, as far as single versions tell.
std::uint32_t fewestLayers(const PlanNetwork& network) {
  std::uint32_t fewest = std::numeric_limits<std::uint32_t>::max();
  for (const auto& target : network.targets) {
    std::uint32_t layers = 0;
    for (const auto& ends : target) {
      for (const NodeIndex node : ends) {
        layers = std::max(layers, network.nodes[node].ordinaryStepsBefore);
      }
    }
    fewest = std::min(fewest, layers);
  }
  return fewest;
}

class Planner final : public LearningPlanner {
 public:
  Planner(const PlanningGround& ground, PlanNetwork&& network, const OpenStart* start)
      : space_(ground.space),
        start_(start),
        network_(std::move(network)),
        plans_(network_),
        timeline_(network_, plans_.formula, plans_.sat),
        leastWeight_(plans_, timeline_, fewestLayers(network_)) {}

  std::optional<BackwardPlan> plan() override {
    if (!network_.canBegin() || network_.targets.empty()) return std::nullopt;
    const std::vector<WeightShare> shares = leastWeight_.find();
    if (shares.empty()) return std::nullopt;
    std::optional<StepWeights> first;
    std::vector<std::uint64_t> firstWeights;
    for (const WeightShare& share : shares) {
      StepWeights steps(plans_, timeline_, share);
      std::vector<std::uint64_t> weights = steps.find();
      // Heavier comes first; sequences of one total do not begin one another.
      if (first && weights <= firstWeights) continue;
      first.emplace(std::move(steps));
      firstWeights = std::move(weights);
    }
    const PlannedWay way = FirstPlaces(plans_, first->steps(), first->decided(), start_).find();
    return backwardPlan(way, firstWeights);
  }

  bool keepCheapestEnds(std::span<const EndCost> costs) override {
    CoreGuidedMinimum minimum(plans_.sat);
    for (const auto& ends : endsByName(costs)) wantCheap(ends, minimum);
    const auto accept = [this] { return plans_.check.accept(); };
    if (minimum.minimize({}, accept) != CoreGuidedMinimum::Outcome::Found) return false;
    for (const Literal literal : minimum.stillWanted()) plans_.sat.addClause({literal});
    return true;
  }

  VersionSelection commonEnds() override {
    VersionSelection ends(network_.names.size(), SearchSpace::none);
    plans_.findPlan({});
    for (NameIndex name = 0; name < ends.size(); ++name) ends[name] = endOf(name);
    for (NameIndex name = 0; name < ends.size(); ++name) {
      if (ends[name] == SearchSpace::none) continue;
      const Literal isOther = -plans_.formula.endsAt(nodeOf(ends[name]));
      if (!plans_.findPlan({&isOther, 1})) continue;
      for (NameIndex other = 0; other < ends.size(); ++other) {
        if (ends[other] != endOf(other)) ends[other] = SearchSpace::none;
      }
    }
    return ends;
  }

  void forbidTogether(std::span<const VersionIndex> versions) override {
    if (const auto nodes = nodesOf(versions)) plans_.formula.forbidTogether(*nodes);
  }

  void forbidAtEnd(std::span<const VersionIndex> versions) override {
    const auto nodes = nodesOf(versions);
    if (!nodes) return;
    std::vector<Literal> clause;
    for (const NodeIndex node : *nodes) clause.push_back(-plans_.formula.endsAt(node));
    plans_.sat.addClause(clause);
  }

 private:
  /// No value when no plan holds one of them.
  std::optional<std::vector<NodeIndex>> nodesOf(std::span<const VersionIndex> versions) const {
    std::vector<NodeIndex> nodes;
    for (const VersionIndex version : versions) {
      nodes.push_back(nodeOf(version));
      if (nodes.back() == network_.names[space_.versions[version].name].end) return std::nullopt;
    }
    return nodes;
  }

  /// The end of the name's nodes when there is none of the version.
  NodeIndex nodeOf(VersionIndex version) const {
    const auto& [first, end] = network_.names[space_.versions[version].name];
    NodeIndex node = first;
    while (node < end && network_.nodes[node].version != version) ++node;
    return node;
  }

  /// In the plan found last.
  VersionIndex endOf(NameIndex name) const {
    return network_.nodes[plans_.check.nodesOf(name).back()].version;
  }

  /// Those that a plan can end with, by name; dearer ones first.
  std::vector<std::vector<std::pair<std::uint64_t, NodeIndex>>> endsByName(
      std::span<const EndCost> costs) const {
    std::vector<std::vector<std::pair<std::uint64_t, NodeIndex>>> result(network_.names.size());
    for (const auto& [end, cost] : costs) {
      const NameIndex name = space_.versions[end].name;
      const NodeIndex node = nodeOf(end);
      if (node != network_.names[name].end) result[name].emplace_back(cost, node);
    }
    for (auto& ends : result) std::sort(ends.rbegin(), ends.rend());
    return result;
  }

  /// A literal for each cost that a name's end may have: false only if the end costs less. What the
  /// next lower one does not cost is the price of its being true.
  void wantCheap(const std::vector<std::pair<std::uint64_t, NodeIndex>>& ends,
                 CoreGuidedMinimum& minimum) {
    Literal dearer = plans_.formula.never();
    for (std::size_t i = 0; i < ends.size();) {
      const std::uint64_t cost = ends[i].first;
      const Literal costsAsMuch = plans_.sat.newVariable();
      plans_.sat.addClause({-dearer, costsAsMuch});
      for (; i < ends.size() && ends[i].first == cost; ++i) {
        plans_.sat.addClause({-plans_.formula.endsAt(ends[i].second), costsAsMuch});
      }
      const std::uint64_t below = i < ends.size() ? ends[i].first : 0;
      if (cost > below) minimum.want(-costsAsMuch, cost - below);
      dearer = costsAsMuch;
    }
  }

  BackwardPlan backwardPlan(const PlannedWay& way,
                            const std::vector<std::uint64_t>& weights) const {
    std::vector<VersionSelection> selections(1);
    for (const NodeIndex node : way.start) selections[0].push_back(network_.nodes[node].version);
    std::vector<std::vector<PlannedHop>> hops;
    for (const std::vector<ArcIndex>& step : way.steps) {
      VersionSelection after = selections.back();
      std::vector<PlannedHop>& made = hops.emplace_back(after.size(), PlannedHop::None);
      for (NameIndex name = 0; name < step.size(); ++name) {
        if (step[name] == SearchSpace::none) continue;
        const PlanNetwork::Arc& arc = network_.arcs[step[name]];
        after[name] = network_.nodes[arc.to].version;
        made[name] = arc.expensive ? PlannedHop::Expensive : PlannedHop::Ordinary;
      }
      selections.push_back(std::move(after));
    }
    return BackwardPlan::ofOneWay(space_.sources.size(), selections, hops, weights);
  }

  const SearchSpace& space_;
  const OpenStart* const start_;
  const PlanNetwork network_;
  PlanSolver plans_;
  Timeline timeline_;
  LeastWeight leastWeight_;
};

}  // namespace

std::unique_ptr<LearningPlanner> LearningPlanner::create(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets,
    const OpenStart* start) {
  auto network = makePlanNetwork(ground, targets, start);
  if (!network) return nullptr;
  return std::make_unique<Planner>(ground, *std::move(network), start);
}

}  // namespace tarn::evolution::pathfinder
