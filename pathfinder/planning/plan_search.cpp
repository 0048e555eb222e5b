// A* from the targets back to the sources. A node is a step in formation: a selection that has been
// reached, and a partial assignment of the problem of stepping back from there. Its key is the best
// that can become of it: the least total, then the step weights decided so far, from the last step
// back, and the heaviest possible ones before them.
//
// The bound is admissible but not consistent: it may improve along a plan. So a selection may be
// reached again in a better way, and is then opened again. All ways that cost the same are kept.
// The search ends when the best key is worse than the best plan that has reached a source; by then
// every step of every best plan has been formed.
//
// Memory is that of the nodes waiting, of the problems that they belong to, and of the plan.

#include "pathfinder/planning/plan_search.hpp"

#include <algorithm>
#include <deque>
#include <new>
#include <type_traits>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/dominance.hpp"
#include "pathfinder/planning/incoming_hops.hpp"
#include "pathfinder/planning/selection_links.hpp"
#include "pathfinder/planning/word_pool.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

class PlanSearch {
 public:
  PlanSearch(const PlanningGround& ground, const std::optional<IdleStep>& first, std::uint64_t most,
             const PlanningBudget& budget)
      : ground_(ground),
        first_(first),
        most_(most),
        effortLeft_(budget.effort),
        provesTotals_(budget.isSpaceComplete && !first),
        incoming_(ground.space, ground.bounds),
        dominance_(ground.space, ground.compatibility, incoming_,
                   first ? first->target : SearchSpace::none),
        links_(ground.space),
        plan_(ground.space.names.size(), ground.space.sources.size()) {
    const auto& sources = ground.space.sources;
    for (const SearchSpace::Source& source : sources) {
      if (first_ || !source.isRegular || source.selection.empty()) continue;
      plan_.selections_.intern(source.selection);
    }
    plan_.regularSources_ = plan_.selections_.size();
    for (std::size_t i = 0; i < sources.size(); ++i) {
      if (sources[i].isRegular || sources[i].selection.empty()) continue;
      if (first_ && first_->source != i) continue;
      plan_.selections_.intern(sources[i].selection);
      irregularSources_.push_back(i);
    }
  }

  std::optional<BackwardPlan> run(const std::vector<VersionSelection>& targets) {
    for (const VersionSelection& target : targets) beginAt(target);
    while (!waiting_.empty()) {
      std::pop_heap(waiting_.begin(), waiting_.end(), IsAfter{plan_.chains_});
      Node* node = waiting_.back();
      waiting_.pop_back();
      if (node->bound.total > most_) break;
      if (best_ && comesFirst(plan_.chains_, boundOf(*best_), node->bound)) break;
      watchOver(*node);
      pursue(node);
    }
    if (!best_) return std::nullopt;
    plan_.cost_ = *best_;
    return std::move(plan_);
  }

 private:
  /// A selection that has been reached, from which steps back are formed.
  struct Stage {
    explicit Stage(const PlanningGround& ground) : problem(ground) {}

    StepProblem problem;
    SelectionIndex after = SearchSpace::none;  // none for the problem of a last selection
    PlanCost cost;                             // of what is decided after it
    std::uint32_t nodes = 0;                   // that refer to it
  };

  /// Stands in front of the words that it refers to.
  struct Node {
    CostBound bound;
    std::uint64_t sequence;
    Stage* stage;
    PartialStep partial;
  };
  static_assert(std::is_trivially_destructible_v<Node> &&
                sizeof(Node) % sizeof(std::uint64_t) == 0);

  /// Orders the queue: the best bound first, among equal ones the node added last.
  struct IsAfter {
    const WeightChains& chains;

    bool operator()(const Node* left, const Node* right) const {
      const auto order = pathfinder::order(chains, left->bound, right->bound);
      return order == 0 ? left->sequence < right->sequence : order > 0;
    }
  };

  void watchOver(const Node& node) {
    spend(nodeEffort + std::exchange(scratch_.looks, 0));
    SearchWatch* watch = SearchWatch::current();
    if (watch == nullptr) return;
    watch->noteMemory(nodes_.bytes() + plan_.bytes());
    if (provesTotals_) watch->noteProven(node.bound.total);
    if (best_) watch->noteFound(best_->total);
    watch->check();
  }

  void spend(std::uint64_t effort) {
    if (effortLeft_ == PlanningBudget::unlimited) return;
    if (effort > effortLeft_) throw PlanningBudget::Spent();
    effortLeft_ -= effort;
  }

  void beginAt(const VersionSelection& target) {
    Stage& stage = newStage(SearchSpace::none, {}, StepProblem::Kind::LastSelection);
    for (NameIndex name = 0; name < target.size(); ++name) {
      const SearchSpace::Name& range = ground_.space.names[name];
      const bool isFree = target[name] == SearchSpace::none;
      const VersionIndex first = isFree ? range.first : target[name];
      const VersionIndex end = isFree ? range.end : target[name] + 1;
      for (VersionIndex version = first; version < end; ++version) {
        if (!ground_.space.versions[version].canBeCombined) continue;
        if (!isFree || dominance_.mayEndAt(version)) stage.problem.addOption({version});
      }
      stage.problem.endName();
    }
    open(stage);
  }

  void stepBackFrom(SelectionIndex after, const PlanCost& cost) {
    const SelectionView selection = plan_.selections_[after];
    const bool mayRest = std::any_of(selection.begin(), selection.end(), [this](VersionIndex held) {
      const auto hops = incoming_.into(held);
      return std::any_of(hops.begin(), hops.end(),
                         [](const IncomingHop& hop) { return hop.weight == hopWeight(true); });
    });
    using Kind = StepProblem::Kind;
    Stage& stage = newStage(after, cost, mayRest ? Kind::Step : Kind::StepWithOrdinaryHop);
    for (const VersionIndex version : selection) {
      addOptions(stage.problem, version, selection, mayRest);
    }
    open(stage);
  }

  /// Adds what a name that holds a version after the step can do in it.
  void addOptions(StepProblem& problem, VersionIndex version, SelectionView after, bool mayRest) {
    for (const IncomingHop& hop : incoming_.into(version)) {
      if (!ground_.space.versions[hop.before].canBeCombined) continue;  // only a first step
      problem.addOption({hop.before, hop.weight});
    }
    const Dominance::Stay stay = dominance_.stayAt(version, after);
    if (stay == Dominance::Stay::Always) problem.addOption({version});
    if (stay == Dominance::Stay::WithoutOrdinaryHop && mayRest) {
      problem.addOption({version, 0, true});
    }
    const SearchSpace::Version& held = ground_.space.versions[version];
    const VersionIndex absent = ground_.space.names[held.name].absent;
    if (held.isEntry && absent != SearchSpace::none) problem.addOption({absent});
    problem.endName();
  }

  Stage& newStage(SelectionIndex after, const PlanCost& cost, StepProblem::Kind kind) {
    if (spareStages_.empty()) spareStages_.push_back(&stages_.emplace_back(ground_));
    Stage& stage = *spareStages_.back();
    spareStages_.pop_back();
    stage.problem.reset(kind);
    stage.after = after;
    stage.cost = cost;
    stage.nodes = 0;
    return stage;
  }

  void open(Stage& stage) {
    Node* node = newNode(stage);
    if (stage.problem.begin(node->partial)) {
      push(node);
    } else {
      release(node);
    }
  }

  /// Goes on with a node, which is used up.
  void pursue(Node* node) {
    const StepProblem& problem = node->stage->problem;
    if (node->partial.isStale) {
      problem.refresh(node->partial);
      push(node);
      return;
    }
    if (problem.isComplete(node->partial)) {
      complete(*node);
    } else {
      branch(*node);
    }
    release(node);
  }

  void branch(const Node& node) {
    const StepProblem& problem = node.stage->problem;
    problem.visitOptions(node.partial, [&](std::size_t option) {
      Node* child = newNode(*node.stage);
      std::uint64_t* const words = child->partial.words;
      child->partial = node.partial;
      child->partial.words =
          std::copy_n(node.partial.words, problem.words(), words) - problem.words();
      if (problem.choose(child->partial, option)) {
        push(child);
      } else {
        release(child);
      }
    });
  }

  /// Adds a node to the queue, or drops it if no plan can become of it.
  void push(Node* node) {
    const Stage& stage = *node->stage;
    CostBound bound;
    if (!stage.problem.findBound(node->partial, plan_.chains_, scratch_, bound)) {
      release(node);
      return;
    }
    std::uint64_t* const ahead = node->partial.words + stage.problem.words();
    std::copy(bound.ahead.begin(), bound.ahead.end(), ahead);
    node->bound = {stage.cost.total + bound.total, stage.cost.weights,
                   std::span(ahead, bound.ahead.size()), bound.isCutOff};
    node->sequence = ++added_;
    waiting_.push_back(node);
    std::push_heap(waiting_.begin(), waiting_.end(), IsAfter{plan_.chains_});
  }

  static std::size_t wordsOf(const Stage& stage) {
    return sizeof(Node) / sizeof(std::uint64_t) + stage.problem.words() + stage.problem.mostAhead();
  }

  Node* newNode(Stage& stage) {
    std::uint64_t* const memory = nodes_.take(wordsOf(stage));
    Node* node = new (memory) Node{};
    node->stage = &stage;
    node->partial.words = memory + sizeof(Node) / sizeof(std::uint64_t);
    ++stage.nodes;
    return node;
  }

  void release(Node* node) {
    Stage& stage = *node->stage;
    nodes_.giveBack(reinterpret_cast<std::uint64_t*>(node), wordsOf(stage));
    if (--stage.nodes == 0) spareStages_.push_back(&stage);
  }

  /// A step is formed: the selection before it is reached.
  void complete(const Node& node) {
    const Stage& stage = *node.stage;
    if (!stage.problem.takeOptions(node.partial, options_)) return;
    before_.clear();
    hops_.clear();
    std::uint64_t hopWeights = 0;
    for (const StepOption& option : options_) {
      before_.push_back(option.before);
      hops_.push_back(option.hop == 0                  ? PlannedHop::None
                      : option.hop == hopWeight(false) ? PlannedHop::Ordinary
                                                       : PlannedHop::Expensive);
      hopWeights += option.hop;
    }
    if (!links_.mayBeHeld(before_)) return;
    PlanCost cost = stage.cost;
    if (stage.after != SearchSpace::none) {
      if (!links_.mayLeadTo(before_, plan_.selections_[stage.after])) return;
      cost.total += stepWeight(hopWeights);
      cost.weights = plan_.chains_.append(cost.weights, stepWeight(hopWeights));
    }
    reach(cost, stage.after);
  }

  /// Notes that the step of `hops_` leads from `before_` to `after`.
  void reach(const PlanCost& cost, SelectionIndex after) {
    const SelectionIndex before = plan_.selections_.intern(before_);
    const bool isBetter = plan_.improve(plan_.continuationOf(before), cost);
    if (after != SearchSpace::none && plan_.costFrom(before) == cost) {
      plan_.addStep(plan_.continuationOf(before), hops_, after);
    }
    if (!isBetter) return;
    if (before < plan_.regularSources_) offerBest(cost);
    for (const std::size_t source : irregularSources_) stepBackToIrregular(source, before, cost);
    stepBackFrom(before, cost);
  }

  void offerBest(const PlanCost& cost) {
    if (!best_ || comesFirst(plan_.chains_, boundOf(cost), boundOf(*best_))) best_ = cost;
  }

  /// Looks whether one step leads from a source that is not regular to a selection. What such a
  /// source holds need not be able to stand together, so that no step problem finds it.
  void stepBackToIrregular(std::size_t source, SelectionIndex after, const PlanCost& cost) {
    const SelectionView from = ground_.space.sources[source].selection;
    const SelectionView to = plan_.selections_[after];
    hops_.assign(from.size(), PlannedHop::None);
    std::uint64_t hopWeights = 0;
    for (NameIndex name = 0; name < from.size(); ++name) {
      if (from[name] == to[name] || mayEnter(from[name], to[name])) continue;
      hops_[name] = cheapestHop(from[name], to[name]);
      if (hops_[name] == PlannedHop::None) return;
      hopWeights += hopWeight(hops_[name] == PlannedHop::Expensive);
    }
    if (first_ && !isFirstStep(to)) return;
    if (!links_.mayLeadTo(from, to)) return;
    if (hopWeights > 0) {
      addIrregular(source, after, cost, hopWeights);
      return;
    }
    // All that is left to do is to link anew, for which it takes a hop that leads nowhere.
    for (NameIndex name = 0; name < from.size(); ++name) {
      if (ground_.space.isAbsent(from[name])) continue;
      hops_[name] = cheapestHop(from[name], to[name]);
      if (hops_[name] == PlannedHop::None) continue;
      addIrregular(source, after, cost, hopWeight(hops_[name] == PlannedHop::Expensive));
      hops_[name] = PlannedHop::None;
    }
  }

  /// Whether the hops planned are those of the step that has to be the first.
  bool isFirstStep(SelectionView after) const {
    if (after[first_->name] != first_->target || hops_[first_->name] != first_->hop) return false;
    return std::count(hops_.begin(), hops_.end(), PlannedHop::None) ==
           static_cast<std::ptrdiff_t>(hops_.size()) - 1;
  }

  bool mayEnter(VersionIndex before, VersionIndex after) const {
    return ground_.space.isAbsent(before) && ground_.space.versions[after].isEntry;
  }

  PlannedHop cheapestHop(VersionIndex before, VersionIndex after) const {
    PlannedHop cheapest = PlannedHop::None;
    for (const SearchSpace::Move& move : ground_.space.versions[before].moves) {
      if (move.target != after) continue;
      if (!move.expensive) return PlannedHop::Ordinary;
      cheapest = PlannedHop::Expensive;
    }
    return cheapest;
  }

  /// Takes the step of `hops_` from a source that is not regular, if there is none better.
  void addIrregular(std::size_t source, SelectionIndex after, const PlanCost& costAfter,
                    std::uint64_t hopWeights) {
    const std::uint64_t weight = stepWeight(hopWeights);
    const PlanCost cost{costAfter.total + weight, plan_.chains_.append(costAfter.weights, weight)};
    BackwardPlan::Continuation& continuation = plan_.irregular_[source];
    plan_.improve(continuation, cost);
    if (continuation.cost == cost) plan_.addStep(continuation, hops_, after);
    offerBest(cost);
  }

  const PlanningGround& ground_;
  const std::optional<IdleStep> first_;  // if it has to be the first
  const std::uint64_t most_;             // that a plan may cost
  std::uint64_t effortLeft_;
  const bool provesTotals_;
  const IncomingHops incoming_;
  const Dominance dominance_;
  const SelectionLinks links_;
  BackwardPlan plan_;
  std::vector<std::size_t> irregularSources_;
  std::optional<PlanCost> best_;

  WordPool nodes_;
  std::deque<Stage> stages_;
  std::vector<Stage*> spareStages_;
  std::vector<Node*> waiting_;  // a heap
  std::uint64_t added_ = 0;     // to it, so far

  // Kept for their memory.
  StepProblem::Scratch scratch_;
  std::vector<StepOption> options_;
  std::vector<VersionIndex> before_;
  std::vector<PlannedHop> hops_;
};

std::optional<BackwardPlan> planBackward(const PlanningGround& ground,
                                         const std::vector<VersionSelection>& targets,
                                         const PlanningBudget& budget,
                                         const std::optional<IdleStep>& first, std::uint64_t most) {
  return PlanSearch(ground, first, most, budget).run(targets);
}

}  // namespace tarn::evolution::pathfinder
