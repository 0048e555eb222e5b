#include "pathfinder/learning/learning_planner.hpp"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "pathfinder/learning/core_guided_minimum.hpp"
#include "pathfinder/learning/first_places.hpp"
#include "pathfinder/learning/least_weight.hpp"
#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/plan_solver.hpp"
#include "pathfinder/learning/step_weights.hpp"
#include "pathfinder/learning/timeline.hpp"
#include "pathfinder/learning/variant_links.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// The fewest steps with an ordinary hop that any plan has, as far as single versions tell.
std::uint32_t fewestLayers(const PlanNetwork& network) {
  std::uint32_t fewest = std::numeric_limits<std::uint32_t>::max();
  for (const auto& target : network.targets) {
    std::uint32_t layers = 0;
    for (const auto& ends : target) {
      if (ends.empty()) continue;
      const auto first = std::min_element(ends.begin(), ends.end(), [&](auto one, auto other) {
        return network.nodes[one].ordinaryStepsBefore < network.nodes[other].ordinaryStepsBefore;
      });
      layers = std::max(layers, network.nodes[*first].ordinaryStepsBefore);
    }
    fewest = std::min(fewest, layers);
  }
  return fewest;
}

/// Everything that a network is planned with.
struct NetworkPlanning {
  NetworkPlanning(PlanNetwork&& made, std::function<void()> notePlan)
      : network(std::move(made)),
        plans(network),
        timeline(network, plans.formula, plans.sat),
        leastWeight(plans, timeline, fewestLayers(network), std::move(notePlan)) {}

  const PlanNetwork network;
  PlanSolver plans;
  Timeline timeline;
  LeastWeight leastWeight;
};

/// Plans over the ways of one lap, and over more laps until it is proven that none of more laps can
/// be as light as what was found: because a name's way alone weighs too much that goes back so
/// often, or because no plan is as light in which it holds, from there on, whatever suits.
class Planner final : public LearningPlanner {
 public:
  Planner(const PlanningGround& ground, const std::vector<VersionSelection>& targets,
          const LinkChoices* links, const OpenStart* start, std::unique_ptr<const VariantLinks> own)
      : ground_(ground),
        targets_(targets),
        own_(std::move(own)),
        links_(links),
        start_(start),
        laps_(ground.space.names.size(), 1) {}

  /// False when the question is not for it.
  bool begin() {
    auto network = makePlanNetwork(ground_, targets_, links_, start_, {laps_});
    if (!network) return false;
    work_.emplace(*std::move(network), [this] { notePlan(); });
    forbidAll(*work_);
    return true;
  }

  void tellPlans(PlanMet met) override { met_ = std::move(met); }

  std::optional<BackwardPlan> plan() override {
    takeDroppedBack();
    const Heavier heavier = std::exchange(nextTime_, Heavier::Kept);
    while (true) {
      areAnyDropped_ = heavier == Heavier::Dropped;
      const std::vector<WeightShare> shares = findShares(heavier);
      if (!takeLaps(shares)) return shares.empty() ? std::nullopt : std::optional(planOf(shares));
      begin();
    }
  }

  void forbidTogether(std::span<const VersionIndex> versions) override {
    forbiddenTogether_.emplace_back(versions.begin(), versions.end());
    forbidTogether(*work_, versions);
  }

  void forbidAtEnd(std::span<const VersionIndex> versions) override {
    forbiddenAtEnd_.emplace_back(versions.begin(), versions.end());
    forbidAtEnd(*work_, versions);
  }

  bool keepCheapestEnds(std::span<const EndCost> costs) override {
    if (work_->network.isCut) throw Undecided();
    takeDroppedBack();
    nextTime_ = Heavier::Kept;
    PlanSolver& plans = work_->plans;
    CoreGuidedMinimum minimum(plans.sat);
    for (const auto& ends : endsByName(costs)) wantCheap(ends, minimum);
    const auto accept = [&] { return plans.check.accept(); };
    if (minimum.minimize({}, accept) != CoreGuidedMinimum::Outcome::Found) return false;
    for (const Literal literal : minimum.stillWanted()) plans.sat.addClause({literal});
    return true;
  }

  VersionSelection commonEnds() override {
    if (work_->network.isCut) throw Undecided();
    takeDroppedBack();
    PlanSolver& plans = work_->plans;
    VersionSelection ends(work_->network.names.size(), SearchSpace::none);
    plans.findPlan({});
    for (NameIndex name = 0; name < ends.size(); ++name) ends[name] = endOf(name);
    for (NameIndex name = 0; name < ends.size(); ++name) {
      if (ends[name] == SearchSpace::none) continue;
      const Literal isOther = -plans.formula.endsAt(work_->network.copiesOf(ends[name], name)[0]);
      if (!plans.findPlan({&isOther, 1})) continue;
      for (NameIndex other = 0; other < ends.size(); ++other) {
        if (ends[other] != endOf(other)) ends[other] = SearchSpace::none;
      }
    }
    return ends;
  }

 private:
  using Heavier = LeastWeight::Heavier;

  static constexpr std::uint64_t noWeight = std::numeric_limits<std::uint64_t>::max();
  static constexpr std::uint32_t mostLaps = 6;     // that a network is made for
  static constexpr std::size_t mostCopies = 1000;  // of what is forbidden

  /// After a question that has left only the lightest plans, makes all that was excluded so anew.
  void takeDroppedBack() {
    if (areAnyDropped_) begin();
    areAnyDropped_ = false;
  }

  std::vector<WeightShare> findShares(Heavier heavier) {
    const PlanNetwork& network = work_->network;
    if (!network.canBegin() || network.targets.empty()) return {};
    // Minimization meets its first plan when the fewest expensive hops are proven.
    if (met_ && lightestCarriedOut_ == noWeight) work_->leastWeight.meetPlans();
    return work_->leastWeight.find(heavier);
  }

  /// Notes the plan that the check has accepted last.
  void notePlan() {
    const OrderCheck& check = work_->plans.check;
    const std::uint64_t weight =
        check.expensiveHops() * expensiveHopWeight + check.ordinaryHops() + check.ordinarySteps();
    if (met_ && weight < lightestCarriedOut_) {
      const auto plan = planAtHand();
      if (plan && met_(*plan)) lightestCarriedOut_ = weight;
    }
    if (SearchWatch* watch = SearchWatch::current()) watch->noteFound(weight);
  }

  /// That plan; no value if it comes back to a selection, for what is between can be left out.
  std::optional<BackwardPlan> planAtHand() const {
    const PlanNetwork& network = work_->network;
    const OrderCheck& check = work_->plans.check;
    PlannedWay way;
    for (NameIndex name = 0; name < network.names.size(); ++name) {
      way.start.push_back(check.nodesOf(name).front());
    }
    std::vector<std::uint64_t> weights;
    for (const std::vector<ArcIndex>& arcs : check.steps()) {
      auto& step = way.steps.emplace_back(network.names.size(), SearchSpace::none);
      std::uint64_t hops = 0;
      for (const ArcIndex arc : arcs) {
        step[network.nodes[network.arcs[arc].to].name] = arc;
        const PlannedHop hop = network.arcs[arc].hop;
        if (hop != PlannedHop::None) hops += hopWeight(hop == PlannedHop::Expensive);
      }
      weights.push_back(stepWeight(hops));
    }
    std::reverse(weights.begin(), weights.end());
    const std::vector<VersionSelection> held = selectionsOf(way);
    if (std::set(held.begin(), held.end()).size() < held.size()) return std::nullopt;
    return backwardPlan(way, weights);
  }

  /// Lets names go back as often as ways might that are as light as the best ones found. False when
  /// they do already. Throws Undecided when that is too often, or never known.
  bool takeLaps(const std::vector<WeightShare>& shares) {
    if (!work_->network.isCut) return false;
    const std::uint64_t most = shares.empty() ? Unrolling::noWay - 1 : weightOf(shares);
    const std::vector<NameIndex> open = namesThatMayGoBack(most);
    if (open.empty() || leastWeightBeyond(open) > most) return false;
    for (const NameIndex name : open) {
      if (laps_[name] == mostLaps) throw Undecided();
      ++laps_[name];
    }
    return true;
  }

  /// Those that may go back more often in a plan that weighs so much, as far as each name's own
  /// ways tell.
  std::vector<NameIndex> namesThatMayGoBack(std::uint64_t most) const {
    const PlanNetwork& network = work_->network;
    std::vector<std::uint64_t> least;
    std::uint64_t sum = 0;
    for (const Unrolling& unrolling : network.unrollings) {
      least.push_back(unrolling.leastWeight(0));
      if (least.back() == Unrolling::noWay) return {};  // however often
      sum += least.back();
    }
    std::vector<NameIndex> open;
    for (NameIndex name = 0; name < laps_.size(); ++name) {
      if (!network.unrollings[name].isCyclic()) continue;
      const std::uint64_t own = network.unrollings[name].leastWeight(laps_[name]);
      if (own != Unrolling::noWay && own <= most - std::min(most, sum - least[name])) {
        open.push_back(name);
      }
    }
    return open;
  }

  /// What plans weigh at least in which one of these names goes back more often than it may.
  std::uint64_t leastWeightBeyond(const std::vector<NameIndex>& names) const {
    auto network = makePlanNetwork(ground_, targets_, links_, start_, {laps_, true});
    NetworkPlanning beyond(*std::move(network), [] {});  // what it meets are no plans
    forbidAll(beyond);
    if (!beyond.network.canBegin() || beyond.network.targets.empty()) return Unrolling::noWay;
    std::vector<Literal> isAnyHeld;
    for (const NodeIndex node : beyond.network.beyond) {
      const NameIndex name = beyond.network.nodes[node].name;
      if (std::binary_search(names.begin(), names.end(), name)) {
        isAnyHeld.push_back(beyond.plans.formula.isHeld(node));
      }
    }
    beyond.plans.sat.addClause(isAnyHeld);
    const std::vector<WeightShare> shares = beyond.leastWeight.find(Heavier::Dropped);
    return shares.empty() ? Unrolling::noWay : weightOf(shares);
  }

  static std::uint64_t weightOf(const std::vector<WeightShare>& shares) {
    const WeightShare& share = shares.front();
    return share.expensiveHops * expensiveHopWeight + share.ordinaryHops + share.layers;
  }

  BackwardPlan planOf(const std::vector<WeightShare>& shares) {
    PlanSolver& plans = work_->plans;
    std::optional<StepWeights> first;
    std::vector<std::uint64_t> firstWeights;
    for (const WeightShare& share : shares) {
      const bool isOnly = areAnyDropped_ && shares.size() == 1;
      const Literal decided = isOnly ? plans.formula.always() : plans.sat.newVariable();
      StepWeights steps(plans, work_->timeline, share, decided);
      std::vector<std::uint64_t> weights = steps.find();
      // Heavier comes first; sequences of one total do not begin one another.
      if (first && weights <= firstWeights) continue;
      first.emplace(std::move(steps));
      firstWeights = std::move(weights);
    }
    if (areAnyDropped_) plans.sat.addClause({first->decided()});
    FirstPlaces places(plans, first->steps(), first->decided(), links_, start_);
    return backwardPlan(places.find(), firstWeights);
  }

  void forbidAll(NetworkPlanning& work) const {
    for (const auto& versions : forbiddenTogether_) forbidTogether(work, versions);
    for (const auto& versions : forbiddenAtEnd_) forbidAtEnd(work, versions);
  }

  void forbidTogether(NetworkPlanning& work, std::span<const VersionIndex> versions) const {
    for (const auto& nodes : copiesOf(work.network, versions)) {
      work.plans.formula.forbidTogether(nodes);
    }
  }

  void forbidAtEnd(NetworkPlanning& work, std::span<const VersionIndex> versions) const {
    for (const auto& nodes : copiesOf(work.network, versions)) {
      std::vector<Literal> clause;
      clause.reserve(nodes.size());
      for (const NodeIndex node : nodes) clause.push_back(-work.plans.formula.endsAt(node));
      work.plans.sat.addClause(clause);
    }
  }

  /// The nodes that stand for some versions, one for each, in all laps.
  std::vector<std::vector<NodeIndex>> copiesOf(const PlanNetwork& network,
                                               std::span<const VersionIndex> versions) const {
    std::vector<std::vector<NodeIndex>> copies(1);
    for (const VersionIndex version : versions) {
      const NameIndex name = ground_.space.versions[version].name;
      std::vector<std::vector<NodeIndex>> longer;
      for (const NodeIndex node : network.copiesOf(version, name)) {
        for (const std::vector<NodeIndex>& nodes : copies) {
          longer.push_back(nodes);
          longer.back().push_back(node);
        }
      }
      if (longer.size() > mostCopies) throw Undecided();
      copies = std::move(longer);
    }
    return copies;
  }

  /// In the plan found last.
  VersionIndex endOf(NameIndex name) const {
    return work_->network.nodes[work_->plans.check.nodesOf(name).back()].version;
  }

  /// Those that a plan can end with, by name; dearer ones first.
  std::vector<std::vector<std::pair<std::uint64_t, NodeIndex>>> endsByName(
      std::span<const EndCost> costs) const {
    const PlanNetwork& network = work_->network;
    std::vector<std::vector<std::pair<std::uint64_t, NodeIndex>>> result(network.names.size());
    for (const auto& [end, cost] : costs) {
      const NameIndex name = ground_.space.versions[end].name;
      for (const NodeIndex node : network.copiesOf(end, name)) {
        result[name].emplace_back(cost, node);
      }
    }
    for (auto& ends : result) std::sort(ends.rbegin(), ends.rend());
    return result;
  }

  /// A literal for each cost that a name's end may have: false only if the end costs less. What the
  /// next lower one does not cost is the price of its being true.
  void wantCheap(const std::vector<std::pair<std::uint64_t, NodeIndex>>& ends,
                 CoreGuidedMinimum& minimum) {
    PlanSolver& plans = work_->plans;
    Literal dearer = plans.formula.never();
    for (std::size_t i = 0; i < ends.size();) {
      const std::uint64_t cost = ends[i].first;
      const Literal costsAsMuch = plans.sat.newVariable();
      plans.sat.addClause({-dearer, costsAsMuch});
      for (; i < ends.size() && ends[i].first == cost; ++i) {
        plans.sat.addClause({-plans.formula.endsAt(ends[i].second), costsAsMuch});
      }
      const std::uint64_t below = i < ends.size() ? ends[i].first : 0;
      if (cost > below) minimum.want(-costsAsMuch, cost - below);
      dearer = costsAsMuch;
    }
  }

  BackwardPlan backwardPlan(const PlannedWay& way,
                            const std::vector<std::uint64_t>& weights) const {
    std::vector<std::vector<PlannedHop>> hops;
    for (const std::vector<ArcIndex>& step : way.steps) {
      std::vector<PlannedHop>& made = hops.emplace_back(step.size(), PlannedHop::None);
      for (NameIndex name = 0; name < step.size(); ++name) {
        if (step[name] != SearchSpace::none) made[name] = work_->network.arcs[step[name]].hop;
      }
    }
    return BackwardPlan::ofOneWay(ground_.space.sources.size(), selectionsOf(way), hops, weights);
  }

  /// What is held on the way.
  std::vector<VersionSelection> selectionsOf(const PlannedWay& way) const {
    const PlanNetwork& network = work_->network;
    std::vector<VersionSelection> selections(1);
    for (const NodeIndex node : way.start) selections[0].push_back(network.nodes[node].version);
    for (const std::vector<ArcIndex>& step : way.steps) {
      VersionSelection after = selections.back();
      for (NameIndex name = 0; name < step.size(); ++name) {
        if (step[name] == SearchSpace::none) continue;
        after[name] = network.nodes[network.arcs[step[name]].to].version;
      }
      selections.push_back(std::move(after));
    }
    return selections;
  }

  const PlanningGround ground_;
  const std::vector<VersionSelection> targets_;
  const std::unique_ptr<const VariantLinks> own_;
  const LinkChoices* const links_;  // null if no name can be brought in
  const OpenStart* const start_;
  std::vector<std::uint32_t> laps_;  // by name
  std::optional<NetworkPlanning> work_;
  std::vector<std::vector<VersionIndex>> forbiddenTogether_;
  std::vector<std::vector<VersionIndex>> forbiddenAtEnd_;

  // A plan is mostly asked for once, and then only the lightest ones are of use.
  Heavier nextTime_ = Heavier::Dropped;
  bool areAnyDropped_ = false;  // from the network at hand

  PlanMet met_;
  std::uint64_t lightestCarriedOut_ = noWeight;  // of the plans it was told
};

}  // namespace

std::unique_ptr<LearningPlanner> LearningPlanner::create(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets) {
  const bool isAnyAbsent =
      std::any_of(ground.space.names.begin(), ground.space.names.end(),
                  [](const auto& name) { return name.absent != SearchSpace::none; });
  auto links = isAnyAbsent ? VariantLinks::create(ground.space) : nullptr;
  if (isAnyAbsent && !links) return nullptr;
  const LinkChoices* const choices = links.get();
  auto planner = std::make_unique<Planner>(ground, targets, choices, nullptr, std::move(links));
  if (!planner->begin()) return nullptr;
  return planner;
}

std::unique_ptr<LearningPlanner> LearningPlanner::create(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets,
    const LinkChoices& links, const OpenStart* start) {
  auto planner = std::make_unique<Planner>(ground, targets, &links, start, nullptr);
  if (!planner->begin()) return nullptr;
  return planner;
}

}  // namespace tarn::evolution::pathfinder
