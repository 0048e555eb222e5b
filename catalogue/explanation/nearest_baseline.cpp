// Iterative deepening over the sum of hops left: from the least that the metamodels need upward,
// asks at once for all selections with that sum. So the first answer has the fewest hops left, and
// of those the path finder takes the lightest path. Before that strikes, for each metamodel, the
// nearest options that cannot be reached together with what is fixed.
//
// One question for each sum and each option struck; selections are enumerated depth first, up to a
// limit. See docs/catalogue.md. All that only where the path finder cannot be asked for it at once.

#include "catalogue/explanation/nearest_baseline.hpp"

#include <algorithm>

#include "catalogue/explanation/goal_subsets.hpp"
#include "catalogue/explanation/hops_against.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;

namespace {

/// A version that a goal's metamodel may have in the end, and how many hops it has left then.
struct Option {
  const Metamodel* version;  ///< null: any, or none
  std::size_t hopsLeft;
};

/// The options of one metamodel, ascending by hops left.
struct Choice {
  std::u16string name;
  std::vector<Option> options;
};

using Arrival = pathfinder::BlockedQuestion::Nearest;

/// Without steps the way ends at a source: at one that includes a target, unless there are none of
/// these that could be linked and listed within the limits.
Arrival arrivalBy(const PosedQuestion& question, Path path,
                  const std::vector<VersionBaseline>& targets) {
  if (!path.empty()) {
    VersionBaseline baseline = path.back().to;
    return {std::move(path), std::move(baseline)};
  }
  const auto source =
      std::find_if(question.sources.begin(), question.sources.end(), [&](const auto& candidate) {
        return std::any_of(targets.begin(), targets.end(), [&](const VersionBaseline& target) {
          return candidate.includes(target);
        });
      });
  return {{}, source == question.sources.end() ? question.sources.front() : *source};
}

/// Finds, among selections that take one option of each choice, a reachable one with the fewest
/// hops left in all.
class FewestHops {
 public:
  /// `known` is the way to what the first alternative fixes, if it was found already.
  FewestHops(const PosedQuestion& question, std::vector<std::vector<Choice>> alternatives,
             std::optional<Path> known = std::nullopt)
      : question_(question), alternatives_(std::move(alternatives)), known_(std::move(known)) {}

  bool isProven() const { return isProven_; }

  std::optional<Arrival> run() {
    const SelectedMetamodels fixed = fixedBy(alternatives_.front());
    for (auto& choices : alternatives_) dropHopeless(choices);
    std::size_t least = ~std::size_t{0};
    std::size_t most = 0;
    for (const auto& choices : alternatives_) {
      least = std::min(least, sum(choices, [](const auto& options) { return options.front(); }));
      most = std::max(most, sum(choices, [](const auto& options) { return options.back(); }));
    }
    for (std::size_t hopsLeft = least; hopsLeft <= most; ++hopsLeft) {
      if (question_.inquiry->isSpent()) break;
      targets_.clear();
      isUnbound_ = false;
      visits_ = 0;
      for (const auto& choices : alternatives_) {
        SelectedMetamodels selection;
        enumerate(choices, 0, hopsLeft, selection);
      }
      if (visits_ > mostVisits) break;
      if (auto arrival = ask()) return arrival;
      if (isOpen_) break;
    }
    isProven_ = false;
    return takeOneByOne(fixed);
  }

 private:
  static constexpr std::size_t mostVisits = 20'000;
  static constexpr std::size_t mostTargets = 5'000;

  template <class Pick>
  static std::size_t sum(const std::vector<Choice>& choices, const Pick& pick) {
    std::size_t result = 0;
    for (const Choice& choice : choices) result += pick(choice.options).hopsLeft;
    return result;
  }

  /// Takes away the options with fewer hops left than the choice can be brought to with all those
  /// that are fixed.
  void dropHopeless(std::vector<Choice>& choices) {
    const SelectedMetamodels fixed = fixedBy(choices);
    for (Choice& choice : choices) {
      auto& options = choice.options;
      while (options.size() > 1 && !question_.inquiry->isSpent()) {
        SelectedMetamodels selection = fixed;
        add(options.front(), selection);
        if (!question_.reach(selection).isAbsent()) break;
        options.erase(options.begin());
      }
    }
  }

  static SelectedMetamodels fixedBy(const std::vector<Choice>& choices) {
    SelectedMetamodels fixed;
    for (const Choice& choice : choices) {
      if (choice.options.size() == 1) add(choice.options.front(), fixed);
    }
    return fixed;
  }

  static void add(const Option& option, SelectedMetamodels& selection) {
    if (option.version != nullptr) selection.emplace(option.version->name, *option.version);
  }

  /// Gathers the baselines of all selections with just so many hops left.
  void enumerate(const std::vector<Choice>& choices, std::size_t position, std::size_t hopsLeft,
                 SelectedMetamodels& selection) {
    const bool isTooMuch = ++visits_ > mostVisits || targets_.size() > mostTargets;
    if (isTooMuch || question_.inquiry->isStopped()) {
      visits_ = mostVisits + 1;
      return;
    }
    if (position == choices.size()) {
      if (hopsLeft != 0) return;
      isUnbound_ |= selection.empty();
      for (auto& baseline : question_.inquiry->combine(selection)) {
        targets_.push_back(std::move(baseline));
      }
      return;
    }
    for (const Option& option : choices[position].options) {
      if (option.hopsLeft > hopsLeft) break;
      add(option, selection);
      enumerate(choices, position + 1, hopsLeft - option.hopsLeft, selection);
      if (option.version != nullptr) selection.erase(option.version->name);
    }
  }

  std::optional<Arrival> ask() {
    if (isUnbound_) return Arrival{{}, question_.sources.front()};
    if (targets_.empty()) return std::nullopt;
    Answer answer = question_.inquiry->ask(question_.sources, targets_, question_.direction);
    isOpen_ = answer.isOpen;
    if (!answer.path) return std::nullopt;
    return arrivalBy(question_, *std::move(answer.path), targets_);
  }

  /// Without the questions to find the best: fixes the first choices first, each as well as it can
  /// be, and once no questions are left only those that are fixed already.
  std::optional<Arrival> takeOneByOne(SelectedMetamodels fixed) {
    std::optional<Path> path = std::move(known_);
    for (const Choice& choice : alternatives_.front()) {
      if (choice.options.size() == 1) continue;
      for (const Option& option : choice.options) {
        if (option.version == nullptr) break;
        SelectedMetamodels extended = fixed;
        add(option, extended);
        Answer answer = question_.reach(extended);
        if (!answer.path) continue;
        fixed = std::move(extended);
        path = std::move(answer.path);
        break;
      }
    }
    if (fixed.empty()) return Arrival{{}, question_.sources.front()};
    if (!path) path = question_.reach(fixed).path;
    if (!path) return std::nullopt;
    return arrivalBy(question_, *std::move(path), question_.inquiry->combine(fixed));
  }

  const PosedQuestion& question_;
  std::vector<std::vector<Choice>> alternatives_;
  std::optional<Path> known_;
  std::vector<VersionBaseline> targets_;
  bool isUnbound_ = false;  // a selection leaves everything open
  std::size_t visits_ = 0;
  bool isOpen_ = false;  // a limit has kept the last question from being answered
  bool isProven_ = true;
};

/// All versions within reach from which the goal has a chain of hops.
Choice chainTo(const PosedQuestion& question, const Metamodel& goal) {
  const HopGraph& graph = question.graphs->of(goal.name);
  const std::vector<bool> isReached = graph.reachedFrom(question.starts.at(goal.name));
  const auto hopsLeft = graph.hopsTo(goal.version);
  Choice result{goal.name, {}};
  for (HopGraph::Vertex vertex = 0; vertex < isReached.size(); ++vertex) {
    if (isReached[vertex] && hopsLeft[vertex]) {
      result.options.push_back({&graph.versions()[vertex], *hopsLeft[vertex]});
    }
  }
  std::stable_sort(
      result.options.begin(), result.options.end(),
      [](const Option& left, const Option& right) { return left.hopsLeft < right.hopsLeft; });
  return result;
}

std::vector<Choice> choicesFor(const PosedQuestion& question, const Names& arriving) {
  std::vector<Choice> result;
  for (const auto& [name, goal] : question.goals) {
    if (arriving.contains(name)) {
      result.push_back({name, {{&goal, 0}}});
      continue;
    }
    result.push_back(chainTo(question, goal));
    result.back().options.push_back({nullptr, question.graphs->of(name).versions().size()});
  }
  return result;
}

/// What the goals cost that end somewhere else.
class EndCosts {
 public:
  using Cost = std::optional<std::uint64_t>;

  explicit EndCosts(const PosedQuestion& question) {
    for (const auto& [name, goal] : question.goals) {
      const HopGraph& graph = question.graphs->of(name);
      goals_.emplace(name, Goal{&goal, &graph, graph.hopsTo(goal.version)});
    }
  }

  /// One for each that has not arrived.
  Cost toArrive(const Metamodel& end) const {
    const auto goal = goals_.find(end.name);
    return goal == goals_.end() || goal->second.version->version == end.version ? 0 : 1;
  }

  /// The hops left; without a chain of them as much as there are versions.
  Cost toGoOn(const Metamodel& end) const {
    const Cost hops = toGoOnByChain(end);
    return hops ? hops : goals_.at(end.name).graph->versions().size();
  }

  /// The same; without a chain of hops there is no end.
  Cost toGoOnByChain(const Metamodel& end) const {
    const auto goal = goals_.find(end.name);
    if (goal == goals_.end()) return 0;
    const auto vertex = goal->second.graph->find(end.version);
    return vertex ? goal->second.hopsLeft[*vertex] : std::nullopt;
  }

 private:
  struct Goal {
    const Metamodel* version;
    const HopGraph* graph;
    std::vector<std::optional<std::size_t>> hopsLeft;
  };

  std::map<std::u16string, Goal> goals_;
};

using EndCost = pathfinder::BlockedQuestion::EndCost;

/// Whether the path finder would not stumble over a version of the path: each of them must have all
/// that its dependencies admit.
bool canBeLinked(const PosedQuestion& question, const Path& path) {
  LinkableRepository& repository = question.inquiry->repository();
  return std::all_of(path.begin(), path.end(), [&](const BaselineHop& step) {
    return std::all_of(step.hops.begin(), step.hops.end(), [&](const auto& hop) {
      const auto metamodel = repository.getMetamodel(hop.first, hop.second.to);
      return metamodel && repository.tryLink(*metamodel) != nullptr;
    });
  });
}

/// The way to ends that are certain.
std::optional<Arrival> arriveAt(const PosedQuestion& question, const Selection& ends) {
  SelectedMetamodels selection;
  for (const auto& [name, goal] : question.goals) {
    const auto end = ends.find(name);
    if (end == ends.end()) return std::nullopt;
    selection.emplace(name, *question.inquiry->repository().getMetamodel(name, end->second));
  }
  Answer answer = question.reach(selection);
  if (!answer.path) return std::nullopt;
  return arrivalBy(question, *std::move(answer.path), question.inquiry->combine(selection));
}

/// Where the path finder finds the lowest costs; no value when a limit is reached.
std::optional<Arrival> arriveAtCheapest(const PosedQuestion& question,
                                        const std::vector<EndCost>& measures) {
  if (question.mayLink) {
    const auto ends = question.inquiry->within([&](const pathfinder::SearchLimits& limits) {
      return question.blocked->findNearestEnds(measures, limits);
    });
    if (!ends) return std::nullopt;
    if (auto arrival = arriveAt(question, *ends)) return arrival;
  }
  auto nearest = question.inquiry->within([&](const pathfinder::SearchLimits& limits) {
    return question.blocked->findNearest(measures, limits);
  });
  if (nearest && question.mayLink && !canBeLinked(question, nearest->path)) return std::nullopt;
  return nearest;
}

/// Without listing baselines: takes goal by goal as long as there is a path to all of them, up to
/// so many questions. What the path finder answers has the direction of its own question.
Arrival takeBySelections(const PosedQuestion& question) {
  constexpr int mostQuestions = 30;
  Arrival best{{}, question.sources.front()};
  const auto holds = [&](const Metamodel& goal) {
    const auto held = best.baseline.metamodels.find(goal.name);
    return held != best.baseline.metamodels.end() && held->second->version == goal.version;
  };
  Question part{*question.selected, {}};
  for (const auto& [name, goal] : question.goals) {
    if (holds(goal)) part.to.emplace(name, goal.version);
  }
  int questions = 0;
  for (const auto& [name, goal] : question.goals) {
    if (holds(goal) || questions++ == mostQuestions) continue;
    part.to.insert_or_assign(name, goal.version);
    Answer answer = question.inquiry->ask(part);
    const bool isNearer =
        answer.path && !answer.path->empty() &&
        hopsAgainst(question.inquiry->repository(), question.direction, *answer.path).empty();
    if (isNearer) {
      best = arrivalBy(question, *std::move(answer.path), {});
    } else {
      part.to.erase(name);
    }
  }
  return best;
}

NearestBaseline described(const PosedQuestion& question, Arrival arrival, bool isProven) {
  NearestBaseline result{.path = std::move(arrival.path),
                         .baseline = std::move(arrival.baseline),
                         .isProven = isProven};
  for (const auto& [name, goal] : question.goals) {
    const NamedVersion target{name, goal.version};
    const auto held = result.baseline.metamodels.find(name);
    if (held == result.baseline.metamodels.end()) {
      result.unfinished.push_back({target, std::nullopt, std::nullopt});
    } else if (held->second->version == goal.version) {
      result.arrived.push_back(target);
    } else {
      const HopGraph& graph = question.graphs->of(name);
      const VersionId& version = held->second->version;
      const auto vertex = graph.find(version);
      const auto hopsLeft = vertex ? graph.hopsTo(goal.version)[*vertex] : std::nullopt;
      result.unfinished.push_back({target, version, hopsLeft});
    }
  }
  return result;
}

}  // namespace

NearestBaseline findNearestBaseline(const PosedQuestion& question) {
  if (question.canAskForNearest()) {
    const EndCosts costs(question);
    auto nearest =
        arriveAtCheapest(question, {[&](const Metamodel& end) { return costs.toArrive(end); },
                                    [&](const Metamodel& end) { return costs.toGoOn(end); }});
    if (nearest) return described(question, *std::move(nearest), true);
  }
  if (!question.mayLink) {
    return described(question,
                     question.canAskForNearest() ? Arrival{{}, question.sources.front()}
                                                 : takeBySelections(question),
                     false);
  }
  GoalSubsets subsets = findLargestGoalSubsets(question);
  std::vector<std::vector<Choice>> alternatives;
  for (const Names& arriving : subsets.largest) {
    alternatives.push_back(choicesFor(question, arriving));
  }
  FewestHops search(question, std::move(alternatives), std::move(subsets.path));
  auto arrival = search.run();
  if (!arrival) arrival = Arrival{{}, question.sources.front()};
  return described(question, *std::move(arrival),
                   subsets.isProven && search.isProven() && !question.inquiry->hasCut());
}

std::optional<VersionBaseline> findClosestBaseline(const PosedQuestion& question) {
  if (question.canAskForNearest()) {
    const EndCosts costs(question);
    auto nearest = arriveAtCheapest(
        question, {[&](const Metamodel& end) { return costs.toGoOnByChain(end); }});
    if (!nearest) return std::nullopt;
    return std::move(nearest->baseline);
  }
  std::vector<Choice> choices;
  for (const auto& [name, goal] : question.goals) {
    choices.push_back(chainTo(question, goal));
    if (choices.back().options.empty()) return std::nullopt;
  }
  FewestHops search(question, {std::move(choices)});
  const auto arrival = search.run();
  if (!arrival || !search.isProven()) return std::nullopt;
  return arrival->baseline;
}

}  // namespace tarn::evolution::catalogue
