#pragma once

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <unordered_set>
#include <vector>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_distances.hpp"
#include "pathfinder/planning/survey_state.hpp"
#include "pathfinder/planning/surveyed_ends.hpp"
#include "pathfinder/planning/version_exploration.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Asks the application, once for each version, for what can lie on a path: versions within reach
/// of the sources by hops and by what links bring in, their hops, and their linked metamodels. What
/// comes of it is a search space.
///
/// Of a name that every target mentions, only versions from which hops lead to a target's are
/// linked: no path holds the others. Of any other name the survey goes only as far as the targets
/// need it to, and can be extended. Irrelevant names are not even asked for (see
/// `IrrelevantNames`), unless everything is to be surveyed.
///
/// A version that cannot be linked, or with which the application fails, is left out and noted: the
/// answer need not depend on it.
class SpaceSurvey {
 public:
  /// What becomes of versions that failed. The best that may be assumed of one is that it links
  /// nothing and, where its hops are unknown, that these lead everywhere.
  enum class Failed {
    LeftOut,
    AssumedBest,  ///< but for those that conflict, which no path can hold
  };

  explicit SpaceSurvey(const SearchQuestion& question);

  /// Surveys what has to be. Throws what the application throws of a source.
  void begin();

  /// Goes on until every plan of that total weight, or of less, lies in what has been surveyed.
  /// Whether anything new was found.
  bool extendToCover(std::uint64_t total);

  /// Goes on, further each time; false when there is nothing left to survey.
  bool extend();

  /// Whether there is nothing left to survey.
  bool isOver() const;

  /// Goes wherever hops and links lead, irrelevant names and what no path holds included.
  void surveyEverything();

  /// Whether the question has a search space. It has none when a source holds a null pointer, or a
  /// linked metamodel under another name than its own, or when the application answers a name with
  /// a metamodel of another name.
  bool isFit() const { return !state_.isUnfit; }

  /// The space of what has been surveyed. Refers to the survey; valid until the next one is made.
  std::unique_ptr<const SearchSpace> makeSpace(Failed failed = Failed::LeftOut);

  /// Whether any version failed of which the best may be assumed.
  bool anyFailed() const { return state_.failures.anyButConflicts(); }

  /// Throws what the first of these versions of which the best is assumed failed with, as far as
  /// they did. The versions are those of the space made last.
  void throwFailureOf(const std::vector<VersionIndex>& versions) const {
    state_.failures.throwFirstOf(versions);
  }

  /// What a search meets that tries every step from every baseline, as far as it can hold what has
  /// been surveyed; what is nearest to the sources comes first, each name taken alone.
  std::vector<SurveyedFault> faults() const { return faultsOf(state_); }

 private:
  void survey();
  void markWhatLeadsToTargets();
  void spreadBackwards(SurveyedName& name) const;
  void linkWhatIsOfUse();
  void link(SurveyedVersion& version);
  void enterLinks(const LinkedMetamodel& variant);
  void enterRequirements(SurveyedVersion& version);
  bool enterLink(const LinkedMetamodel& linked);
  void goAsFarAsTargetsNeed();
  bool goAllTo(std::uint64_t radius);

  SurveyState state_;
  VersionExploration exploration_;
  SurveyedEnds ends_;
  const SurveyDistances distances_;
  std::pmr::unordered_set<const LinkedMetamodel*> linksSeen_{&state_.memory};
  int extensions_ = 0;
};

}  // namespace tarn::evolution::pathfinder
