// Depth-first search from the sources on, sources in list order, steps by their combination index
// (the hops of the last name are its most significant digit), and the baselines that a combination
// leads to in the order in which they are combined. What has failed with as many steps left is not
// tried again. It keeps its own stack, because a path may have many steps.
//
// Invariant: the trail is a beginning of a best plan, and each of its baselines holds just the
// versions of its selection.

#include "pathfinder/planning/plan_execution.hpp"

#include <algorithm>
#include <deque>
#include <map>
#include <unordered_set>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/baseline_combination.hpp"
#include "pathfinder/planning/step_digits.hpp"
#include "pathfinder/planning/variant_filter.hpp"
#include "pathfinder/search/hop_collection.hpp"
#include "pathfinder/search/step_generation.hpp"
#include "pathfinder/search/step_weight.hpp"
#include "pathfinder/search/target_baseline.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class PlanExecution {
 public:
  PlanExecution(const SearchQuestion& question, const SearchSpace& space, const BackwardPlan& plan)
      : question_(question),
        space_(space),
        plan_(plan),
        selections_(plan.selections()),
        steps_(plan.chains().length(plan.cost().weights)),
        filter_(space) {}

  SearchAnswer run() {
    for (std::size_t i = 0; i < question_.sources.size(); ++i) {
      if (!walkFrom(i)) continue;
      answer_.source = &question_.sources[i];
      answer_.verdict = SearchAnswer::Verdict::Found;
      takeSteps();
      return std::move(answer_);
    }
    return {SearchAnswer::Verdict::Unsettled};
  }

 private:
  /// Combinations of hops that are planned, each with the selections that it may lead to.
  using Combinations = std::map<StepDigits, std::vector<SelectionIndex>>;

  /// A baseline on the way that is being tried, and how far its combinations have been.
  struct Visit {
    const VersionBaseline* baseline;  // a source's, or a candidate of the visit before
    SelectionIndex selection;
    Combinations combinations;  // those left to try
    bool linksAnew = false;     // whether its linked metamodels are not of the repository's making
    std::vector<SelectionIndex> after = {};  // what the combination tried last may lead to
    LockstepHop hops = {};                   // of that combination
    std::vector<VersionBaseline> candidates = {};
    std::size_t seen = 0;  // of the candidates
  };

  /// Goes by the best plans from a source as far as they lead; true when that is to a target.
  bool walkFrom(std::size_t source) {
    if (enterSource(source)) return true;
    if (!trail_.empty()) collectHopsOfIrrelevantNames(source);
    while (!trail_.empty()) {
      Visit& visit = trail_.back();
      const std::uint32_t stepsLeft = steps_ + 1 - static_cast<std::uint32_t>(trail_.size());
      const SelectionIndex after = nextCandidate(visit);
      if (after != SearchSpace::none) {
        if (enter(visit.candidates[visit.seen - 1], after, stepsLeft - 1)) return true;
      } else {
        failed_[stepsLeft].push_back(*visit.baseline);
        trail_.pop_back();
      }
    }
    return false;
  }

  bool enterSource(std::size_t source) {
    const auto& [selection, isRegular] = space_.sources[source];
    const VersionBaseline& baseline = question_.sources[source];
    if (selection.empty()) return false;
    if (isRegular) {
      const SelectionIndex planned = selections_.find(selection);
      return planned != SearchSpace::none && enter(baseline, planned, steps_);
    }
    if (!plan_.isBestFromIrregular(source)) return false;
    question_.traceTrying(baseline);
    collectHopsOf(baseline, selection);
    trail_.push_back({&baseline, selections_.find(selection),
                      combinationsFrom(plan_.stepsFromIrregular(source), selection), true});
    return false;
  }

  /// Begins to go on from a baseline, if there are plans that have as many steps left; true when a
  /// target is reached and there are none left.
  bool enter(const VersionBaseline& baseline, SelectionIndex selection, std::uint32_t stepsLeft) {
    if (const VersionBaseline* target = targetIn(baseline, selections_[selection])) {
      question_.traceTrying(baseline);
      answer_.target = target;
      return stepsLeft == 0;
    }
    if (!isBestWithStepsLeft(selection, stepsLeft) || hasFailed(baseline, stepsLeft)) return false;
    question_.traceTrying(baseline);
    collectHopsOf(baseline, selections_[selection]);
    trail_.push_back({&baseline, selection,
                      combinationsFrom(plan_.stepsFrom(selection), selections_[selection])});
    return false;
  }

  /// The selection of the next candidate that a plan leads to; none when all have been seen.
  SelectionIndex nextCandidate(Visit& visit) {
    while (true) {
      while (visit.seen < visit.candidates.size()) {
        const VersionBaseline& candidate = visit.candidates[visit.seen++];
        for (const SelectionIndex after : visit.after) {
          if (holds(candidate, visit.selection, after)) return after;
        }
      }
      if (visit.combinations.empty()) return SearchSpace::none;
      attempt(visit);
    }
  }

  /// The steps that have been tried last at every baseline on the way.
  void takeSteps() {
    answer_.steps.reserve(trail_.size());
    // From the end: each step begins with what the one before leads to.
    for (; !trail_.empty(); trail_.pop_back()) {
      Visit& last = trail_.back();
      answer_.steps.emplace_back(*last.baseline, std::move(last.candidates[last.seen - 1]),
                                 std::move(last.hops));
    }
    std::reverse(answer_.steps.begin(), answer_.steps.end());
  }

  const VersionBaseline* targetIn(const VersionBaseline& baseline, SelectionView selection) const {
    return space_.isTarget(selection) ? question_.targetIn(baseline) : nullptr;
  }

  /// Whether what is planned from here on has the step weights with which the best plans end.
  bool isBestWithStepsLeft(SelectionIndex selection, std::uint32_t stepsLeft) const {
    const WeightChains& chains = plan_.chains();
    return stepsLeft > 0 && plan_.reaches(selection) &&
           plan_.costFrom(selection).weights == chains.prefix(plan_.cost().weights, stepsLeft);
  }

  bool hasFailed(const VersionBaseline& baseline, std::uint32_t stepsLeft) {
    const auto failed = failed_.find(stepsLeft);
    return failed != failed_.end() && std::find(failed->second.begin(), failed->second.end(),
                                                baseline) != failed->second.end();
  }

  /// What fails when a baseline's hops are collected is reported as soon as it is processed.
  void collectHopsOf(const VersionBaseline& baseline, SelectionView selection) {
    for (const VersionIndex version : selection) {
      if (space_.isAbsent(version) || space_.versions[version].areHopsCollected) continue;
      if (!hopsCollected_.insert(version).second) continue;
      const std::u16string& name = space_.names[space_.versions[version].name].text;
      collectHopsOf(name, *baseline.metamodels.at(name));
    }
  }

  /// They hold the same in all sources and on all ways.
  void collectHopsOfIrrelevantNames(std::size_t source) {
    if (std::exchange(areIrrelevantCollected_, true)) return;
    const VersionSelection& selection = space_.sources[source].selection;
    const auto relevant =
        std::count_if(selection.begin(), selection.end(),
                      [this](VersionIndex held) { return !space_.isAbsent(held); });
    const auto& metamodels = question_.sources[source].metamodels;
    if (static_cast<std::size_t>(relevant) == metamodels.size()) return;
    for (const auto& [name, linked] : metamodels) {
      if (!isInSpace(name)) collectHopsOf(name, *linked);
    }
  }

  bool isInSpace(const std::u16string& name) const {
    const auto found =
        std::lower_bound(space_.names.begin(), space_.names.end(), name,
                         [](const SearchSpace::Name& one, const std::u16string& wanted) {
                           return one.text < wanted;
                         });
    return found != space_.names.end() && found->text == name;
  }

  void collectHopsOf(const std::u16string& name, const LinkedMetamodel& linked) {
    collectHops(question_.host, question_.direction, name, linked);
  }

  /// The combinations that planned steps stand for.
  Combinations combinationsFrom(PlannedSteps steps, SelectionView selection) const {
    Combinations result;
    plan_.visit(steps, [&](std::span<const PlannedHop> hops, SelectionIndex after) {
      result[digitsOf(space_, selection, hops, selections_[after])].push_back(after);
    });
    return result;
  }

  /// Tries the next combination.
  void attempt(Visit& visit) {
    auto next = visit.combinations.extract(visit.combinations.begin());
    const StepDigits& digits = next.key();
    visit.after = std::move(next.mapped());
    visit.hops.clear();
    visit.hops.reserve(digits.size() -
                       static_cast<std::size_t>(std::count(digits.begin(), digits.end(), 0U)));
    addHops(space_, selections_[visit.selection], digits, visit.hops);
    traceAttempt(visit.hops);
    visit.candidates = space_.anyLinksOwnName
                           ? findTargetBaselines(question_.host, *visit.baseline, visit.hops)
                           : combine(visit, selections_[visit.after.front()], digits);
    visit.seen = 0;
    traceCandidates(visit.candidates);
  }

  /// The baselines that a combination leads to. Only where the plan leaves open what is meant do
  /// names have to be combined.
  std::vector<VersionBaseline> combine(const Visit& visit, SelectionView after,
                                       const StepDigits& digits) {
    VersionBaseline moved = visit.linksAnew ? irrelevantPartOf(*visit.baseline) : *visit.baseline;
    const SelectionView selection = selections_[visit.selection];
    std::vector<OpenVersion> open;
    for (NameIndex name = 0; name < selection.size(); ++name) {
      if (space_.isAbsent(selection[name])) continue;
      const bool hops = digits[selection.size() - 1 - name] != 0;
      const SearchSpace::Name& held = space_.names[name];
      const SearchSpace::Version& version = space_.versions[after[name]];
      if (!held.isCertain || visit.linksAnew) {
        open.push_back({after[name], version.linked});
      } else if (hops) {
        moved.metamodels.at(held.text) = version.linked->front();
      }
    }
    filter_.narrow(open);
    return combine(std::move(moved), open);
  }

  /// What a source holds under names that are not in the space.
  VersionBaseline irrelevantPartOf(const VersionBaseline& source) const {
    VersionBaseline result = source;
    for (const SearchSpace::Name& name : space_.names) result.metamodels.erase(name.text);
    return result;
  }

  /// The baseline with every choice for what is open.
  std::vector<VersionBaseline> combine(VersionBaseline&& moved,
                                       const std::vector<OpenVersion>& open) const {
    std::vector<Alternatives> alternatives;
    alternatives.reserve(open.size());
    for (const OpenVersion& one : open) {
      const SearchSpace::Name& name = space_.names[space_.versions[one.version].name];
      alternatives.push_back({&name.text, one.candidates});
    }
    const std::vector<VersionBaseline> combined = open.empty()
                                                      ? std::vector<VersionBaseline>(1)
                                                      : combineInOrder(alternatives, Links::Closed);
    if (combined.empty()) return {};
    std::vector<VersionBaseline> result(combined.size() - 1, moved);
    result.push_back(std::move(moved));
    for (std::size_t i = 0; i < combined.size(); ++i) {
      for (const auto& [name, linked] : combined[i].metamodels) {
        result[i].metamodels.insert_or_assign(name, linked);
      }
    }
    return result;
  }

  /// Whether what a candidate brings in beside a selection is what another one holds.
  bool holds(const VersionBaseline& candidate, SelectionIndex before, SelectionIndex after) const {
    const SelectionView former = selections_[before];
    for (NameIndex name = 0; name < former.size(); ++name) {
      if (!space_.isAbsent(former[name])) continue;
      const auto broughtIn = candidate.metamodels.find(space_.names[name].text);
      const VersionIndex version = broughtIn == candidate.metamodels.end()
                                       ? former[name]
                                       : space_.versionOf(*broughtIn->second);
      if (version != selections_[after][name]) return false;
    }
    return true;
  }

  const SearchQuestion& question_;
  const SearchSpace& space_;
  const BackwardPlan& plan_;
  const SelectionTable& selections_;
  const std::uint32_t steps_;  // of the best plans
  VariantFilter filter_;
  SearchAnswer answer_;
  std::deque<Visit> trail_;                                       // from the source on
  std::map<std::uint32_t, std::vector<VersionBaseline>> failed_;  // by the number of steps left
  std::unordered_set<VersionIndex> hopsCollected_;                // of versions on the way
  bool areIrrelevantCollected_ = false;
};

}  // namespace

SearchAnswer executePlan(const SearchQuestion& question, const SearchSpace& space,
                         const BackwardPlan& plan) {
  return PlanExecution(question, space, plan).run();
}

PlanMet pathTeller(const SearchQuestion& question, const SearchSpace& space) {
  SearchWatch* const watch = SearchWatch::current();
  if (watch == nullptr || !watch->wantsPaths()) return {};
  return [watch, &question, &space](const BackwardPlan& plan) {
    return watch->tellPath([&]() -> std::optional<std::vector<BaselineHop>> {
      SearchAnswer answer = executePlan(question, space, plan);
      if (answer.verdict != SearchAnswer::Verdict::Found) return std::nullopt;
      return std::move(answer.steps);
    });
  };
}

}  // namespace tarn::evolution::pathfinder
