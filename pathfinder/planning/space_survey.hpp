#pragma once

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "pathfinder/planning/irrelevant_names.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_state.hpp"
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
  bool isFit() const { return !isUnfit_; }

  /// The space of what has been surveyed. Refers to the survey; valid until the next one is made.
  std::unique_ptr<const SearchSpace> makeSpace(Failed failed = Failed::LeftOut);

  /// Whether any version failed in such a way that the best may be assumed of it.
  bool anyFailed(Failed failed) const;

  /// Throws what the first of these versions that failed did so with, as far as they did; in the
  /// order in which the survey met them. The versions are those of the space made last.
  void throwFailureOf(const std::vector<VersionIndex>& versions) const;

  /// What a search meets that tries every step from every baseline, as far as it can hold what has
  /// been surveyed; what is nearest to the sources comes first, each name taken alone.
  std::vector<SurveyedFault> faults() const;

 private:
  SurveyedVersion* known(const SurveyedName& name, const Metamodel& descriptor) const;
  SurveyedVersion& versionOf(SurveyedName& name, const Metamodel& descriptor);
  SurveyedVersion& versionOf(SurveyedName& name, Metamodel&& descriptor);
  SurveyedVersion& addVersion(SurveyedName& name, const Metamodel& descriptor);

  void enterTargets();
  void enterTarget(std::size_t target, const std::u16string& key, const LinkedMetamodel& linked);
  void closeTarget(std::size_t target, const LinkedMetamodel& linked);
  void noteKnownAnswers();
  void enterSources();
  void enterSource(std::size_t source, const std::u16string& key, const LinkedMetamodel& linked);
  bool isOwn(const SurveyedVersion& version, const LinkedMetamodel& linked) const;
  bool mayNeedToBringIn() const;
  bool mayLinkAnew() const;
  void takeUp(const std::u16string& name, const LinkedMetamodel& linked);
  void takeAllUp();

  void survey();
  void reach(SurveyedVersion& version, std::uint64_t distance);
  void wait(SurveyedVersion& version);
  void explore(SurveyedName& name);
  void explore(SurveyedVersion& version);
  void askForHops(SurveyedVersion& version);
  void noteUnknownHops(SurveyedVersion& version);
  void keepHop(SurveyedVersion& version, Hop& hop);
  void followHops(const SurveyedVersion& version);
  bool goesAgainstDirection(const SurveyedVersion& version, const Metamodel& target) const;
  SurveyedVersion* lookUp(SurveyedName& name, const VersionId& number);
  SurveyedVersion* ask(SurveyedName& name, const VersionId& number);
  void noteAnswer(SurveyedName& name, const VersionId& number, SurveyedVersion* version);
  bool leadsToTargets(SurveyedVersion& version);
  void markWhatLeadsToTargets();
  void spreadBackwards(SurveyedName& name) const;
  void linkWhatIsOfUse();
  void link(SurveyedVersion& version);
  void enterLinks(const LinkedMetamodel& variant);
  bool enterLink(const LinkedMetamodel& linked);
  static bool isAssumedBest(const SurveyFailure& failure, Failed failed);
  template <class Action>
  bool attempt(SurveyedVersion& version, SurveyAttempt what, const Action& action);

  void goAsFarAsTargetsNeed();
  std::optional<std::uint64_t> distanceFor(const SurveyedName& name, std::size_t target) const;
  bool suits(const SurveyedVersion& version, std::size_t target) const;
  bool agrees(const LinkedMetamodel& variant, std::size_t target) const;
  const LinkedMetamodel* heldBy(std::size_t target, const std::u16string& name) const;
  std::uint64_t frontier(const SurveyedName& name) const;
  bool goTo(SurveyedName& name, std::uint64_t radius);

  bool goAllTo(std::uint64_t radius);
  std::uint64_t leastTotal() const;
  std::uint64_t radiusFor(const SurveyedName& name, std::uint64_t slack) const;

  const SearchQuestion& question_;
  SurveyState state_;
  IrrelevantNames irrelevant_;
  std::vector<SurveyedName*> waiting_;  // those of which versions wait
  std::vector<Hop> hops_;               // of the version that is being asked for

  /// What `getMetamodel` answered with another version than the one asked for, or with none.
  std::unordered_map<const SurveyedName*,
                     std::unordered_map<VersionId, SurveyedVersion*, VersionIdHash>>
      otherAnswers_;
  std::pmr::unordered_set<const LinkedMetamodel*> linksSeen_{&state_.memory};
  std::size_t findings_ = 0;  // versions entered, and versions asked for their hops
  int extensions_ = 0;
  bool isUnfit_ = false;
};

}  // namespace tarn::evolution::pathfinder
