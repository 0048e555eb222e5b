#include "pathfinder/learning/learning_search.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "pathfinder/learning/learning_planner.hpp"
#include "pathfinder/learning/variant_conflict.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/plan_execution.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class LearningSearch {
 public:
  LearningSearch(const SearchQuestion& question, const SearchSpace& space, LearningPlanner& planner)
      : question_(question), space_(space), planner_(planner) {}

  std::optional<SearchAnswer> run() {
    planner_.tellPlans(pathTeller(question_, space_));
    while (const auto plan = planner_.plan()) {
      SearchAnswer answer = executePlan(question_, space_, *plan);
      if (answer.verdict == SearchAnswer::Verdict::Found) return answer;
      if (!learnFrom(*plan)) return std::nullopt;
    }
    return SearchAnswer{};
  }

 private:
  /// Forbids what makes a plan impossible; false when nothing is found that does.
  bool learnFrom(const BackwardPlan& plan) {
    const std::vector<SelectionIndex> selections = plan.bestSelections();
    bool anyLearnt = false;
    for (const SelectionIndex index : selections) {
      const SelectionView selection = plan.selections()[index];
      if (const auto conflict = VariantConflict(space_, selection).find()) {
        planner_.forbidTogether(versionsOf(selection, *conflict));
        anyLearnt = true;
      }
    }
    if (anyLearnt) return true;
    return learnFromEnd(plan.selections()[selections.back()]);
  }

  static std::vector<VersionIndex> versionsOf(SelectionView selection,
                                              const std::vector<NameIndex>& names) {
    std::vector<VersionIndex> versions;
    versions.reserve(names.size());
    for (const NameIndex name : names) versions.push_back(selection[name]);
    return versions;
  }

  /// The selection can be held, but includes no target: forbids to end with those of its versions
  /// that keep each target out. Where none of them does, no selection includes a target, and no
  /// end is left.
  bool learnFromEnd(SelectionView selection) {
    std::vector<NameIndex> names;
    VariantConflict conflict(space_, selection);
    for (const VersionBaseline& target : question_.targets) {
      const auto obstacle = conflict.findBeside(target);
      if (!obstacle) return false;
      names.insert(names.end(), obstacle->begin(), obstacle->end());
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    planner_.forbidAtEnd(versionsOf(selection, names));
    return true;
  }

  const SearchQuestion& question_;
  const SearchSpace& space_;
  LearningPlanner& planner_;
};

std::unique_ptr<LearningPlanner> beginOn(const PlanningGround& ground) {
  if (SearchWatch* watch = SearchWatch::current()) watch->enter(SearchProgress::Stage::Learning);
  return LearningPlanner::create(ground, ground.space.targets);
}

class LearningEngine final : public SecondPlanner {
 public:
  Answer plan(const PlanningGround& ground, const PlanMet& met) const override {
    const auto planner = beginOn(ground);
    if (!planner) return {};
    planner->tellPlans(met);
    try {
      return {true, planner->plan()};
    } catch (const LearningPlanner::Undecided&) {
      return {};
    }
  }

  std::optional<SearchAnswer> search(const SearchQuestion& question,
                                     const PlanningGround& ground) const override {
    const auto planner = beginOn(ground);
    if (!planner) return std::nullopt;
    try {
      return LearningSearch(question, ground.space, *planner).run();
    } catch (const LearningPlanner::Undecided&) {
      return std::nullopt;
    }
  }
};

}  // namespace

const SecondPlanner* learningPlanner() {
  static const LearningEngine engine;
  return &engine;
}

}  // namespace tarn::evolution::pathfinder
