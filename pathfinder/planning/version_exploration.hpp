#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

/// Asks the application for the hops of versions, those of each name in the order of their distance
/// from where the name can begin, and for the versions that these hops lead to.
///
/// Of a name that every target mentions, it goes wherever hops may lead to what a target holds. Of
/// any other, and where the direction leads away from the targets, it goes as far as the name's
/// radius. What the application fails at is noted with the version.
class VersionExploration {
 public:
  explicit VersionExploration(SurveyState& state) : state_(state) {}

  /// The version with that descriptor, made when it is met first. A descriptor that is given by
  /// reference has to outlive the survey.
  SurveyedVersion& versionOf(SurveyedName& name, const Metamodel& descriptor);
  SurveyedVersion& versionOf(SurveyedName& name, Metamodel&& descriptor);

  /// What `getMetamodel` answers for a number; null for nothing.
  void noteAnswer(SurveyedName& name, const VersionId& number, SurveyedVersion* version);

  /// A version can be held, by itself, after hops of that weight.
  void reach(SurveyedVersion& version, std::uint64_t distance);

  /// The least distance at which versions of the name may be found that have not been entered.
  std::uint64_t frontier(const SurveyedName& name) const;

  /// Lets a name be explored up to a radius; false when that changes nothing.
  bool goTo(SurveyedName& name, std::uint64_t radius);

  bool isAnyWaiting() const { return !waiting_.empty(); }

  /// Explores all names that wait.
  void explore();

  /// Versions entered, and versions asked for their hops.
  std::size_t findings() const { return findings_; }

 private:
  SurveyedVersion* known(const SurveyedName& name, const Metamodel& descriptor) const;
  SurveyedVersion& addVersion(SurveyedName& name, const Metamodel& descriptor);
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
  bool leadsToTargets(SurveyedVersion& version);

  SurveyState& state_;
  std::vector<SurveyedName*> waiting_;  // those of which versions wait
  std::vector<Hop> hops_;               // of the version that is being asked for
  std::size_t findings_ = 0;

  /// What `getMetamodel` answered with another version than the one asked for, or with none.
  std::unordered_map<const SurveyedName*, std::unordered_map<VersionId, SurveyedVersion*>>
      otherAnswers_;
};

}  // namespace tarn::evolution::pathfinder
