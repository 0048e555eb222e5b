#include "pathfinder/backward_plan.hpp"

#include <algorithm>
#include <queue>
#include <span>

#include "pathfinder/deferral.hpp"
#include "pathfinder/incoming_hops.hpp"
#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

/// A* from the targets back to the sources. Nodes are steps in formation; the key of a node is the
/// least total that it can lead to, then the step weights decided so far and the heaviest possible
/// before them.
class PlanSearch {
 public:
  PlanSearch(const StepFormation::Ground& ground, const std::vector<VersionSelection>& sources)
      : ground_(ground),
        sources_(sources.begin(), sources.end()),
        incoming_(ground.space, ground.outlooks),
        deferral_(ground.space, ground.coexistence, incoming_, sources) {}

  std::optional<BackwardPlan> run(const std::vector<VersionSelection>& targets) {
    for (const VersionSelection& target : targets) beginAt(target);
    while (!waiting_.empty()) {
      const std::shared_ptr<Node> node = waiting_.top();
      waiting_.pop();
      if (best_ && comesFirst(*best_, node->cost)) break;
      if (node->partial.isRough) {
        node->stage->formation.refine(node->partial);
        push(node->stage, std::move(node->partial));
      } else if (!node->stage->formation.isComplete(node->partial)) {
        node->stage->formation.branch(node->partial, [&](StepFormation::Partial&& partial) {
          push(node->stage, std::move(partial));
        });
      } else {
        complete(*node);
      }
    }
    if (!best_) return std::nullopt;
    plan_.weights_ = std::move(best_->weights);
    return std::move(plan_);
  }

 private:
  using Option = StepFormation::Option;

  /// A selection from which steps back are formed, with what is decided after it.
  struct Stage {
    StepFormation formation;
    const VersionSelection* after;  // null for the formation of a last selection
    PlanCost cost;
  };

  struct Node {
    PlanCost cost;  // of what is decided, and the bound of the rest
    std::uint64_t sequence;
    std::shared_ptr<const Stage> stage;
    StepFormation::Partial partial;
  };

  /// Orders the queue: the best cost first, among equal costs the one added last.
  struct IsAfter {
    bool operator()(const std::shared_ptr<Node>& left, const std::shared_ptr<Node>& right) const {
      if (left->cost == right->cost) return left->sequence < right->sequence;
      return comesFirst(right->cost, left->cost);
    }
  };

  void beginAt(const VersionSelection& target) {
    StepFormation formation(ground_, StepFormation::Kind::LastSelection);
    for (NameIndex name = 0; name < target.size(); ++name) {
      const SearchSpace::Name& range = ground_.space.names[name];
      const bool isFree = target[name] == SearchSpace::none;
      const VersionIndex first = isFree ? range.first : target[name];
      const VersionIndex end = isFree ? range.end : target[name] + 1;
      for (VersionIndex version = first; version < end; ++version) formation.addOption({version});
      formation.endName();
    }
    open({std::move(formation), nullptr, {}});
  }

  void stepBackFrom(const VersionSelection& selection, const PlanCost& cost) {
    const bool mayRest = std::any_of(selection.begin(), selection.end(), [this](VersionIndex held) {
      const auto hops = incoming_.into(held);
      return std::any_of(hops.begin(), hops.end(),
                         [](const IncomingHop& hop) { return hop.weight == hopWeight(true); });
    });
    StepFormation formation(
        ground_, mayRest ? StepFormation::Kind::Step : StepFormation::Kind::StepWithOrdinaryHop);
    for (const VersionIndex version : selection) {
      for (const IncomingHop& hop : incoming_.into(version)) {
        formation.addOption({hop.before, hop.weight});
      }
      const Deferral::Stay stay = deferral_.stayAt(version, selection);
      if (stay == Deferral::Stay::Always) formation.addOption({version});
      if (stay == Deferral::Stay::WithoutOrdinaryHop && mayRest) {
        formation.addOption({version, 0, true});
      }
      const SearchSpace::Version& held = ground_.space.versions[version];
      const VersionIndex absent = ground_.space.names[held.name].absent;
      if (held.isEntry && absent != SearchSpace::none) formation.addOption({absent});
      formation.endName();
    }
    open({std::move(formation), &selection, cost});
  }

  void open(Stage stage) {
    const auto shared = std::make_shared<const Stage>(std::move(stage));
    StepFormation::Partial partial = shared->formation.begin();
    if (shared->formation.settle(partial)) push(shared, std::move(partial));
  }

  void push(const std::shared_ptr<const Stage>& stage, StepFormation::Partial partial) {
    if (!stage->formation.findBound(partial, bound_)) return;
    auto node = std::make_shared<Node>();
    node->cost.total = stage->cost.total + bound_.total;
    WeightSequence& weights = node->cost.weights;
    weights.reserve(stage->cost.weights.size() + bound_.weights.size());
    weights = stage->cost.weights;
    weights.insert(weights.end(), bound_.weights.begin(), bound_.weights.end());
    node->sequence = ++added_;
    node->stage = stage;
    node->partial = std::move(partial);
    waiting_.push(std::move(node));
  }

  /// A step is formed: the selection before it is reached.
  void complete(const Node& node) {
    const Stage& stage = *node.stage;
    const std::vector<Option> chosen = stage.formation.chosen(node.partial);
    if (chosen.empty()) return;
    VersionSelection selection;
    BackwardPlan::Step step{{}, stage.after};
    PlanCost cost = stage.cost;
    selection.reserve(chosen.size());
    step.hops.reserve(chosen.size());
    for (const Option& option : chosen) {
      selection.push_back(option.before);
      step.hops.push_back(option.hop);
    }
    if (stage.after != nullptr) {
      std::uint64_t hopWeights = 0;
      for (const std::uint64_t hop : step.hops) hopWeights += hop;
      if (!isBroughtIn(selection, *stage.after)) return;
      cost.total += stepWeight(hopWeights);
      cost.weights.push_back(stepWeight(hopWeights));
    }
    reach(std::move(selection), cost, std::move(step));
  }

  void reach(VersionSelection selection, const PlanCost& cost, BackwardPlan::Step step) {
    const auto [entry, isNew] = plan_.continuations_.try_emplace(std::move(selection));
    BackwardPlan::Continuation& known = entry->second;
    // The guess may improve on the way, so a later arrival can be the better one.
    if (isNew || comesFirst(cost, known.cost)) {
      known = {cost, {}};
      if (sources_.contains(entry->first) && (!best_ || comesFirst(cost, *best_))) best_ = cost;
      stepBackFrom(entry->first, cost);
    }
    if (step.after != nullptr && known.cost == cost) {
      known.steps.insert(std::move(step));
    }
  }

  /// Whether every name that the step adds is linked by a name that was held before it.
  bool isBroughtIn(const VersionSelection& before, const VersionSelection& after) const {
    std::set<NameIndex> added;
    for (NameIndex name = 0; name < before.size(); ++name) {
      if (isAdded(before, after, name)) added.insert(name);
    }
    for (NameIndex name = 0; name < before.size() && !added.empty(); ++name) {
      if (ground_.space.isAbsent(before[name])) continue;
      for (const SearchSpace::Variant& variant : ground_.space.variantsOf(after[name])) {
        if (!matches(variant.closure, after)) continue;
        for (const SearchSpace::Link& link : variant.closure) added.erase(link.name);
      }
    }
    return added.empty();
  }

  bool isAdded(const VersionSelection& before, const VersionSelection& after,
               NameIndex name) const {
    return ground_.space.isAbsent(before[name]) && !ground_.space.isAbsent(after[name]);
  }

  bool matches(std::span<const SearchSpace::Link> closure,
               const VersionSelection& selection) const {
    return std::all_of(closure.begin(), closure.end(), [&](const SearchSpace::Link& link) {
      return ground_.space.variants[link.variant].version == selection[link.name];
    });
  }

  const StepFormation::Ground& ground_;
  std::set<VersionSelection> sources_;
  const IncomingHops incoming_;
  const Deferral deferral_;
  std::priority_queue<std::shared_ptr<Node>, std::vector<std::shared_ptr<Node>>, IsAfter> waiting_;
  std::uint64_t added_ = 0;
  PlanCost bound_;  // of the node being added; kept for its memory
  std::optional<PlanCost> best_;
  BackwardPlan plan_;
};

std::optional<BackwardPlan> BackwardPlan::make(const StepFormation::Ground& ground,
                                               const std::vector<VersionSelection>& sources,
                                               const std::vector<VersionSelection>& targets) {
  return PlanSearch(ground, sources).run(targets);
}

const BackwardPlan::Continuation* BackwardPlan::from(const VersionSelection& selection) const {
  const auto found = continuations_.find(selection);
  return found == continuations_.end() ? nullptr : &found->second;
}

}  // namespace tarn::evolution::pathfinder
