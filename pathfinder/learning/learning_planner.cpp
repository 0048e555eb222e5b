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
#include "pathfinder/learning/variant_links.hpp"

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
  Planner(const PlanningGround& ground, PlanNetwork&& network, const LinkChoices* links,
          const OpenStart* start, std::unique_ptr<const VariantLinks> own)
      : space_(ground.space),
        own_(std::move(own)),
        links_(links),
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
    const PlannedWay way = 
        FirstPlaces(plans_, first->steps(), first->decided(), links_, start_).find();
    return backwardPlan(way, firstWeights);
  }

  void forbidTogether(std::span<const VersionIndex> versions) override {
    plans_.formula.forbidTogether(nodesOf(versions));
  }

  void forbidAtEnd(std::span<const VersionIndex> versions) override {
    std::vector<Literal> clause;
    for (const NodeIndex node : nodesOf(versions)) clause.push_back(-plans_.formula.endsAt(node));
    plans_.sat.addClause(clause);
  }

 private:
  std::vector<NodeIndex> nodesOf(std::span<const VersionIndex> versions) const {
    std::vector<NodeIndex> nodes;
    for (const VersionIndex version : versions) nodes.push_back(network_.nodeOf[version]);
    return nodes;
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
        made[name] = arc.hop;
      }
      selections.push_back(std::move(after));
    }
    return BackwardPlan::ofOneWay(space_.sources.size(), selections, hops, weights);
  }

  const SearchSpace& space_;
  const std::unique_ptr<const VariantLinks> own_;
  const LinkChoices* const links_;  // null if no name can be brought in
  const OpenStart* const start_;
  const PlanNetwork network_;
  PlanSolver plans_;
  Timeline timeline_;
  LeastWeight leastWeight_;
};

}  // namespace

std::unique_ptr<LearningPlanner> LearningPlanner::create(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets) {
  const bool isAnyAbsent =
      std::any_of(ground.space.names.begin(), ground.space.names.end(),
                  [](const auto& name) { return name.absent != SearchSpace::none; });
  auto links = isAnyAbsent ? VariantLinks::create(ground.space) : nullptr;
  if (isAnyAbsent && !links) return nullptr;
  auto network = makePlanNetwork(ground, targets, links.get(), nullptr);
  if (!network) return nullptr;
  const LinkChoices* const choices = links.get();
  return std::make_unique<Planner>(ground, *std::move(network), choices, nullptr, std::move(links));
}

std::unique_ptr<LearningPlanner> LearningPlanner::create(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets,
    const LinkChoices& links, const OpenStart* start) {
  auto network = makePlanNetwork(ground, targets, &links, start);
  if (!network) return nullptr;
  return std::make_unique<Planner>(ground, *std::move(network), &links, start, nullptr);
}

}  // namespace tarn::evolution::pathfinder
