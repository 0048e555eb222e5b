// Plans over a dependency space and links what the plan holds. Versions that cannot be held
// together are forbidden, and the next plan is asked for. What the application failed at is left
// out; it counts if a plan that makes the most of it would come before the one that was found.

#include "pathfinder/learning/selection_search.hpp"

#include <algorithm>
#include <span>
#include <utility>

#include "messages/report_exception.hpp"
#include "messages/trace.hpp"
#include "pathfinder/learning/held_selections.hpp"
#include "pathfinder/learning/learning_planner.hpp"
#include "pathfinder/learning/plan_linking.hpp"
#include "pathfinder/learning/selection_closure.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/first_way.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

/// Plans over a dependency space.
class SelectionPlanner {
 public:
  explicit SelectionPlanner(const DependencySpace& dependencies)
      : dependencies_(dependencies),
        space_(*dependencies.space),
        compatibility_(space_, dependencies.requirements),
        bounds_(computeVersionBounds(space_, compatibility_)) {}

  /// The best plan, as far as it takes little to find it: a long way between few names, above all,
  /// whose steps the search that learns would all have at once. No value when there may be another.
  std::optional<BackwardPlan> planEasily() const {
    const bool mayBringIn =
        std::any_of(space_.names.begin(), space_.names.end(),
                    [](const auto& name) { return name.absent != SearchSpace::none; });
    if (mayBringIn || dependencies_.openStart() != nullptr || space_.sources.empty()) {
      return std::nullopt;
    }
    try {
      const PlanningGround ground{space_, compatibility_, bounds_};
      const std::vector<VersionSelection> targets{dependencies_.target};
      const auto plan =
          planBackward(ground, targets, {.effort = effortBesideLearning(ground, targets)});
      if (plan) return firstWayOf(space_, *plan);
    } catch (const PlanningBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
    }
    return std::nullopt;
  }

  /// How many linked metamodels can be made while learning has all steps of a long way at once; 0
  /// where no way is long.
  std::size_t variantsBesideLearning() const {
    constexpr std::uint64_t mostHopsOfShortWays = 10;
    const PlanningGround ground{space_, compatibility_, bounds_};
    if (hopsBefore(ground, dependencies_.target) <= mostHopsOfShortWays) return 0;
    return linkingBudgetFor(space_.names.size() + space_.versions.size());
  }

  /// Null when the question is not for it.
  std::unique_ptr<LearningPlanner> learnerTo(const VersionSelection& target) const {
    return LearningPlanner::create({space_, compatibility_, bounds_}, {target}, dependencies_,
                                   dependencies_.openStart());
  }

 private:
  const DependencySpace& dependencies_;
  const SearchSpace& space_;
  const Compatibility compatibility_;
  const AllVersionBounds bounds_;
};

/// The same question with the best that may be assumed of what the application failed at.
class AtBest {
 public:
  AtBest(SelectionHost& host, const SelectionQuestion& question, DependencyFailures& failures)
      : failures_(failures), dependencies_(host, question, failures), planner_(dependencies_) {
    first_ = planner_.planEasily();
    if (!first_) first_ = planTo(dependencies_.target);
  }

  /// Throws what a plan without it depends on: what failed in the plan that comes first, if that
  /// makes use of it; or where hops lead that leave a baseline on the way.
  void throwWhatCountsFor(const BackwardPlan& plan, const SearchSpace& itsSpace) const {
    if (first_ && comesFirst(*first_, plan)) {
      throwWhatFailedIn(*first_, first_->bestSelections(), *dependencies_.space);
    } else if (first_) {
      throwWhatIsUsedIn(*first_);
    }
    std::vector<SelectionIndex> left = plan.bestSelections();
    left.pop_back();
    throwWhatFailedIn(plan, left, itsSpace);
  }

  /// Throws what a search meets that tries every step, where there is no plan but with it.
  void throwWhatIsWithinReach() const {
    const SearchSpace& space = *dependencies_.space;
    if (first_) throwWhatFailedIn(*first_, first_->bestSelections(), space);
    for (VersionIndex version = 0; version < space.versions.size(); ++version) {
      if (space.isAbsent(version)) continue;
      if (!failures_.contain(*space.versions[version].descriptor)) continue;
      VersionSelection target(space.names.size(), SearchSpace::none);
      target[space.versions[version].name] = version;
      if (const auto plan = planTo(target)) throwWhatFailedIn(*plan, plan->bestSelections(), space);
    }
  }

 private:
  std::optional<BackwardPlan> planTo(const VersionSelection& target) const {
    const auto learner = planner_.learnerTo(target);
    if (!learner) throw NotForDependencies();
    return learner->plan();
  }

  using Tried = DependencyFailures::Tried;
  using Attempt = DependencyFailures::Attempt;

  /// Throws what failed first of what some selections of a plan hold, if anything did.
  void throwWhatFailedIn(const BackwardPlan& plan, const std::vector<SelectionIndex>& selections,
                         const SearchSpace& space) const {
    std::vector<Tried> tried;
    for (const SelectionIndex selection : selections) {
      for (const Metamodel* held : heldIn(plan, selection, space)) {
        tried.push_back({held, Attempt::Hops});
        tried.push_back({held, Attempt::Needs});
      }
    }
    failures_.throwFirstOf(tried);
  }

  /// The same of what a plan rests on: what it holds, and where its own hops lead.
  void throwWhatIsUsedIn(const BackwardPlan& plan) const {
    const SearchSpace& space = *dependencies_.space;
    std::vector<Tried> tried;
    for (const SelectionIndex selection : plan.bestSelections()) {
      for (const Metamodel* held : heldIn(plan, selection, space)) {
        tried.push_back({held, Attempt::Needs});
      }
      const SelectionView before = plan.selections()[selection];
      plan.visit(plan.stepsFrom(selection), [&](std::span<const PlannedHop> hops, SelectionIndex) {
        for (NameIndex name = 0; name < hops.size(); ++name) {
          if (hops[name] == PlannedHop::None) continue;
          tried.push_back({space.versions[before[name]].descriptor, Attempt::Hops});
        }
      });
    }
    failures_.throwFirstOf(tried);
  }

  static std::vector<const Metamodel*> heldIn(const BackwardPlan& plan, SelectionIndex selection,
                                              const SearchSpace& space) {
    std::vector<const Metamodel*> result;
    for (const VersionIndex version : plan.selections()[selection]) {
      if (!space.isAbsent(version)) result.push_back(space.versions[version].descriptor);
    }
    return result;
  }

  const DependencyFailures& failures_;
  const DependencySpace dependencies_;
  const SelectionPlanner planner_;
  std::optional<BackwardPlan> first_;
};

class SelectionSearch {
 public:
  /// `atBest` is null where nothing failed.
  SelectionSearch(SelectionHost& host, const DependencySpace& dependencies, const AtBest* atBest)
      : dependencies_(dependencies),
        planner_(dependencies),
        linking_(host, dependencies),
        atBest_(atBest) {}

  SelectionAnswer run(SelectionPlanning planning) {
    std::vector<VersionIndex> impossible;
    if (planning != SelectionPlanning::ByLearning) {
      const auto plan = planner_.planEasily();
      auto path = plan ? carryOut(*plan, impossible) : std::nullopt;
      if (path) return {true, std::move(path)};
    }
    if (planning == SelectionPlanning::ShortWays) {
      const std::size_t variants = planner_.variantsBesideLearning();
      if (variants > 0) return {.isSettled = false, .variantsToTry = variants};
    }
    const auto learner = planner_.learnerTo(dependencies_.target);
    if (!learner) return {false};
    linking_.requireNoMoreLinks();
    learner->tellPlans(pathTeller());
    while (const auto plan = learner->plan()) {
      if (auto path = carryOut(*plan, impossible)) return {true, std::move(path)};
      // The application has linked more than dependencies say, which no best assumption knows.
      if (atBest_ != nullptr) return {false};
      learner->forbidTogether(impossible);
    }
    return {};
  }

 private:
  /// As for a search between baselines.
  PlanMet pathTeller() {
    SearchWatch* const watch = SearchWatch::current();
    if (watch == nullptr || !watch->wantsPaths()) return {};
    return [this, watch](const BackwardPlan& plan) {
      return watch->tellPath([&]() -> std::optional<std::vector<BaselineHop>> {
        std::vector<VersionIndex> impossible;
        auto path = linking_.carryOut(plan, impossible);
        if (!path) return std::nullopt;
        return std::move(path->steps);
      });
    };
  }

  std::optional<SelectionPath> carryOut(const BackwardPlan& plan,
                                        std::vector<VersionIndex>& impossible) {
    if (atBest_ != nullptr) atBest_->throwWhatCountsFor(plan, *dependencies_.space);
    auto path = linking_.carryOut(plan, impossible);
    if (!path) return std::nullopt;
    traceValue("Reached target");
    VersionBaseline target = targetIn(path->last);
    return SelectionPath{std::move(path->steps), std::move(path->first), std::move(target)};
  }

  /// What the baseline that was linked last holds of the target.
  VersionBaseline targetIn(const VersionBaseline& last) const {
    VersionBaseline target;
    for (NameIndex name = 0; name < dependencies_.target.size(); ++name) {
      if (dependencies_.target[name] == SearchSpace::none) continue;
      target.tryEmplace(last.metamodels.at(dependencies_.space->names[name].text));
    }
    return target;
  }

  const DependencySpace& dependencies_;
  const SelectionPlanner planner_;
  PlanLinking linking_;
  const AtBest* const atBest_;
};

/// What linking a version throws that cannot be linked; null when it can, or that takes too much.
std::exception_ptr conflictOf(SelectionHost& host, const Metamodel& metamodel) {
  std::exception_ptr conflict;
  try {
    const LinkingBudget budget(linkingBudgetFor(1));
    // Whatever else fails here was not met on the way.
    failureOf([&] {
      try {
        const SelectionClosure alone(host, {{metamodel.name, metamodel.version}});
        if (!alone.firstBaseline()) host.getLinkedMetamodels(metamodel);
      } catch (const Conflict&) {
        conflict = std::current_exception();
      }
    });
  } catch (const LinkingBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
  }
  return conflict;
}

/// Notes versions that cannot be linked.
void noteUnlinkable(SelectionHost& host, const DependencySpace& dependencies,
                    DependencyFailures& failures) {
  const SearchSpace& space = *dependencies.space;
  const std::vector<bool> canBeHeld = HeldSelections(dependencies).versionsThatCanBeHeld();
  for (VersionIndex version = 0; version < space.versions.size(); ++version) {
    checkpoint();
    if (space.isAbsent(version) || canBeHeld[version]) continue;
    const Metamodel& metamodel = *space.versions[version].descriptor;
    if (std::exception_ptr conflict = conflictOf(host, metamodel)) {
      failures.add(metamodel, DependencyFailures::Attempt::Needs, std::move(conflict));
    }
  }
}

/// Where there is no path: throws what a search that tries everything meets on the way to one.
void throwWhatIsWithinReach(SelectionHost& host, const SelectionQuestion& question,
                            const DependencySpace& dependencies, DependencyFailures& failures) {
  noteUnlinkable(host, dependencies, failures);
  if (!failures.any()) return;
  failures.assumeBest();
  try {
    AtBest(host, question, failures).throwWhatIsWithinReach();
  } catch (const NotForDependencies&) {          // NOLINT(bugprone-empty-catch)
  } catch (const LearningPlanner::Undecided&) {  // NOLINT(bugprone-empty-catch)
  }
}

}  // namespace

SelectionAnswer searchBetweenSelections(SelectionHost& host, const SelectionQuestion& question,
                                        SelectionPlanning planning) {
  if (SearchWatch* watch = SearchWatch::current()) watch->enter(SearchProgress::Stage::Learning);
  try {
    DependencyFailures failures;
    const DependencySpace dependencies(host, question, failures);
    if (!dependencies.hasEnds()) return {};
    std::optional<AtBest> atBest;
    if (failures.any()) {
      failures.assumeBest();
      atBest.emplace(host, question, failures);
    }
    auto answer = SelectionSearch(host, dependencies, atBest ? &*atBest : nullptr).run(planning);
    if (!answer.isSettled || answer.path) return answer;
    throwWhatIsWithinReach(host, question, dependencies, failures);
    traceValue("Exhausted search");
    return answer;
  } catch (const NotForDependencies&) {
    return {false};
  } catch (const NotLinkable&) {
    return {false};
  } catch (const LearningPlanner::Undecided&) {
    return {false};
  }
}

SelectionDirection directionBetweenSelections(SelectionHost& host,
                                              const SelectionQuestion& question) {
  try {
    const SelectionClosure source(host, question.from);
    const auto start = source.firstBaseline();
    if (!start) return {};
    const SelectionClosure target(host, question.to);
    const auto end = target.firstBaseline();
    if (!end) return {};
    return {true, directionBetween(host, *start, *end)};
  } catch (const NotForDependencies&) {
    return {false};
  }
}

}  // namespace tarn::evolution::pathfinder
