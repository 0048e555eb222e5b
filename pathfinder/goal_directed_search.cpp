#include "pathfinder/goal_directed_search.hpp"

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <utility>

#include "messages/trace.hpp"
#include "pathfinder/backward_plan.hpp"
#include "pathfinder/baseline_combination.hpp"
#include "pathfinder/coexistence.hpp"
#include "pathfinder/hop_collection.hpp"
#include "pathfinder/outlook.hpp"
#include "pathfinder/space_survey.hpp"
#include "pathfinder/step_generation.hpp"
#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

/// Walks the best plans forward over real baselines: depth first, steps in the order of their
/// combination index, so that the first way through is the path.
class Realisation {
 public:
  Realisation(const SearchQuestion& question, const SearchSpace& space, const BackwardPlan& plan)
      : question_(question), space_(space), plan_(plan) {}

  SearchAnswer run() {
    for (std::size_t i = 0; i < question_.sources.size(); ++i) {
      if (!walkFrom(question_.sources[i], space_.sources[i])) continue;
      answer_.source = &question_.sources[i];
      answer_.verdict = SearchAnswer::Verdict::Found;
      takeSteps();
      return std::move(answer_);
    }
    return {SearchAnswer::Verdict::Unsettled};
  }

 private:
  /// A combination's place among all that leave a baseline: for each name, the last one first, the
  /// place of its hop counted from one, or 0.
  using Digits = std::vector<std::uint32_t>;

  /// The combinations that the planned steps stand for, by their place, and where each may lead.
  using Combinations = std::map<Digits, std::set<VersionSelection>>;

  /// A baseline on the way that is being tried, and how far its combinations have been.
  struct Visit {
    Visit(const VersionBaseline& held, const VersionSelection& versions, Combinations&& planned)
        : baseline(held),
          selection(versions),
          combinations(std::move(planned)),
          next(combinations.begin()) {}

    const VersionBaseline& baseline;  // a source's, or a candidate of the visit before
    VersionSelection selection;
    Combinations combinations;
    Combinations::const_iterator next;
    Combinations::const_iterator tried;       // the one before
    LockstepHop hops;                         // of that
    std::vector<VersionBaseline> candidates;  // that it leads to
    std::size_t seen = 0;                     // of the candidates
  };

  /// Goes by the best plans as far as they lead; true when that is to a target. Keeps its own
  /// stack: a path may have many steps.
  bool walkFrom(const VersionBaseline& source, const VersionSelection& selection) {
    if (enter(source, selection, plan_.weights().size())) return true;
    while (!trail_.empty()) {
      Visit& visit = trail_.back();
      const std::size_t stepsLeft = plan_.weights().size() + 1 - trail_.size();
      if (const auto after = nextCandidate(visit)) {
        if (enter(visit.candidates[visit.seen - 1], *after, stepsLeft - 1)) return true;
      } else {
        failed_[stepsLeft].push_back(visit.baseline);
        trail_.pop_back();
      }
    }
    return false;
  }

  /// Begins to go on from a baseline, if there are plans that have as many steps left; true when a
  /// target is reached and there are none left.
  bool enter(const VersionBaseline& baseline, const VersionSelection& selection,
             std::size_t stepsLeft) {
    if (const VersionBaseline* target = targetIn(baseline, selection)) {
      answer_.target = target;
      return stepsLeft == 0;
    }
    const BackwardPlan::Continuation* planned = plan_.from(selection);
    if (planned == nullptr || !isBestWithStepsLeft(*planned, stepsLeft)) return false;
    if (hasFailed(baseline, stepsLeft)) return false;
    trace(TraceLevel::Reasoning, [&](std::ostream& out) {
      out << "Trying unvisited baseline with least weight: " << baseline;
    });
    reportLostHops(baseline, selection);
    trail_.emplace_back(baseline, selection, order(*planned, selection));
    return false;
  }

  /// What the next candidate that a plan leads to holds; none when all have been seen.
  std::optional<VersionSelection> nextCandidate(Visit& visit) const {
    while (true) {
      while (visit.seen < visit.candidates.size()) {
        VersionSelection after =
            selectionAfter(visit.selection, visit.tried->first, visit.candidates[visit.seen++]);
        if (visit.tried->second.contains(after)) return after;
      }
      if (visit.next == visit.combinations.end()) return std::nullopt;
      visit.tried = visit.next++;
      attempt(visit);
    }
  }

  /// The steps that have been tried last at every baseline on the way.
  void takeSteps() {
    answer_.steps.reserve(trail_.size());
    // From the end: each step begins with what the one before leads to.
    for (; !trail_.empty(); trail_.pop_back()) {
      Visit& last = trail_.back();
      answer_.steps.emplace_back(last.baseline, std::move(last.candidates[last.seen - 1]),
                                 std::move(last.hops));
    }
    std::reverse(answer_.steps.begin(), answer_.steps.end());
  }

  const VersionBaseline* targetIn(const VersionBaseline& baseline,
                                  const VersionSelection& selection) const {
    const bool mayBe = std::any_of(
        space_.targets.begin(), space_.targets.end(), [&](const VersionSelection& target) {
          return std::equal(target.begin(), target.end(), selection.begin(), selection.end(),
                            [](VersionIndex wanted, VersionIndex held) {
                              return wanted == held || wanted == SearchSpace::none;
                            });
        });
    return mayBe ? question_.targetIn(baseline) : nullptr;
  }

  /// Whether what is planned from here on has the step weights with which the best plans end.
  bool isBestWithStepsLeft(const BackwardPlan::Continuation& planned, std::size_t stepsLeft) const {
    const WeightSequence& weights = planned.cost.weights;
    return stepsLeft > 0 && weights.size() == stepsLeft &&
           std::equal(weights.begin(), weights.end(), plan_.weights().begin());
  }

  bool hasFailed(const VersionBaseline& baseline, std::size_t stepsLeft) {
    const auto& failed = failed_[stepsLeft];
    return std::find(failed.begin(), failed.end(), baseline) != failed.end();
  }

  /// A hop whose target was missing is reported as soon as a baseline that offers it is processed.
  void reportLostHops(const VersionBaseline& baseline, const VersionSelection& selection) const {
    for (const VersionIndex index : selection) {
      if (!space_.versions[index].losesHop) continue;
      const std::u16string& name = space_.names[space_.versions[index].name].text;
      HopChoices choices;
      collectHops(question_.repository, question_.direction, name, *baseline.metamodels.at(name),
                  choices);
    }
  }

  Combinations order(const BackwardPlan::Continuation& planned,
                     const VersionSelection& selection) const {
    Combinations result;
    for (const BackwardPlan::Step& step : planned.steps) {
      Digits digits;
      digits.reserve(selection.size());
      for (std::size_t name = selection.size(); name-- > 0;) {
        digits.push_back(placeOf(selection[name], step.hops[name], (*step.after)[name]));
      }
      result[digits].insert(*step.after);
    }
    return result;
  }

  /// The place, counted from one, of the first hop of this weight to that version; 0 for no hop. Of
  /// several equal hops the first decides: the others lead to the same baselines.
  std::uint32_t placeOf(VersionIndex version, std::uint64_t hop, VersionIndex after) const {
    if (hop == 0) return 0;
    const auto& moves = space_.versions[version].moves;
    const auto move =
        std::find_if(moves.begin(), moves.end(), [&](const SearchSpace::Move& candidate) {
          return candidate.target == after && hopWeight(candidate.expensive) == hop;
        });
    return move->place + 1;
  }

  void attempt(Visit& visit) const {
    const Digits& digits = visit.tried->first;
    const VersionSelection& selection = visit.selection;
    visit.hops.clear();
    visit.hops.reserve(digits.size() -
                       static_cast<std::size_t>(std::count(digits.begin(), digits.end(), 0U)));
    for (NameIndex name = 0; name < selection.size(); ++name) {
      const std::uint32_t digit = digits[selection.size() - 1 - name];
      if (digit == 0) continue;
      visit.hops.emplace(space_.names[name].text, space_.versions[selection[name]].hops[digit - 1]);
    }
    traceAttempt(visit.hops);
    visit.candidates = combine(visit.baseline, selection, digits);
    visit.seen = 0;
    traceCandidates(visit.candidates);
  }

  /// The baselines that a combination leads to. Only where the plan leaves open what is meant do
  /// names have to be combined.
  std::vector<VersionBaseline> combine(const VersionBaseline& baseline,
                                       const VersionSelection& selection,
                                       const Digits& digits) const {
    VersionBaseline moved = baseline;
    std::vector<Alternatives> open;
    for (NameIndex name = 0; name < selection.size(); ++name) {
      if (space_.isAbsent(selection[name])) continue;
      const std::uint32_t digit = digits[selection.size() - 1 - name];
      const SearchSpace::Name& held = space_.names[name];
      if (held.isCertain && digit == 0) continue;
      const SearchSpace::Version* version = &space_.versions[selection[name]];
      if (digit != 0) version = &space_.versions[targetOf(*version, digit - 1)];
      if (held.isCertain) {
        moved.metamodels.at(held.text) = version->linked->front();
      } else {
        open.push_back({&held.text, version->linked});
      }
    }
    const std::vector<VersionBaseline> combined =
        open.empty() ? std::vector<VersionBaseline>(1) : combineInOrder(open, Links::Closed);
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

  /// The versions that a combination leads to; `candidate` tells what it brings in.
  VersionSelection selectionAfter(VersionSelection selection, const Digits& digits,
                                  const VersionBaseline& candidate) const {
    for (NameIndex name = 0; name < selection.size(); ++name) {
      const std::uint32_t digit = digits[selection.size() - 1 - name];
      if (digit != 0) {
        selection[name] = targetOf(space_.versions[selection[name]], digit - 1);
      } else if (space_.isAbsent(selection[name])) {
        const auto broughtIn = candidate.metamodels.find(space_.names[name].text);
        if (broughtIn == candidate.metamodels.end()) continue;
        selection[name] = space_.versionOf(*broughtIn->second);
      }
    }
    return selection;
  }

  static VersionIndex targetOf(const SearchSpace::Version& version, std::uint32_t place) {
    return std::find_if(version.moves.begin(), version.moves.end(),
                        [&](const SearchSpace::Move& move) { return move.place == place; })
        ->target;
  }

  const SearchQuestion& question_;
  const SearchSpace& space_;
  const BackwardPlan& plan_;
  SearchAnswer answer_;
  std::deque<Visit> trail_;                                     // from the source on
  std::map<std::size_t, std::vector<VersionBaseline>> failed_;  // by the number of steps left
};

/// The selections of the sources that a path can start from.
std::vector<VersionSelection> startingSelections(const SearchSpace& space) {
  std::vector<VersionSelection> result;
  for (const VersionSelection& source : space.sources) {
    if (!source.empty()) result.push_back(source);
  }
  return result;
}

/// Where all names are bystanders, a source includes a target or none ever will.
SearchAnswer answerWithoutSteps(const SearchQuestion& question) {
  for (const VersionBaseline& source : question.sources) {
    const VersionBaseline* target = question.targetIn(source);
    if (target == nullptr) continue;
    traceValue("Reached target");
    return {SearchAnswer::Verdict::Found, {}, &source, target};
  }
  traceValue("Exhausted search");
  return {};
}

}  // namespace

SearchAnswer searchGoalDirected(const SearchQuestion& question) {
  const auto space = surveySearchSpace(question);
  if (!space) return {SearchAnswer::Verdict::Unsettled};
  if (space->names.empty()) return answerWithoutSteps(question);
  const auto sources = startingSelections(*space);
  const Coexistence coexistence(*space);
  const Outlooks outlooks = computeOutlooks(*space, coexistence, sources);
  const StepFormation::Ground ground{*space, coexistence, outlooks};
  const auto plan = BackwardPlan::make(ground, sources, space->targets);
  if (!plan) {
    traceValue("Exhausted search");
    return {};
  }
  SearchAnswer answer = Realisation(question, *space, *plan).run();
  if (answer.verdict == SearchAnswer::Verdict::Found) traceValue("Reached target");
  return answer;
}

}  // namespace tarn::evolution::pathfinder
