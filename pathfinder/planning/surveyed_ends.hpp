#pragma once

#include <cstddef>
#include <string>

#include "pathfinder/planning/irrelevant_names.hpp"
#include "pathfinder/planning/survey_state.hpp"
#include "pathfinder/planning/version_exploration.hpp"

namespace tarn::evolution::pathfinder {

/// Whether one linked metamodel links another that links another version of the first one's name.
/// That version stands back.
bool bringsInAgainstItself(const LinkedMetamodel& linking, const LinkedMetamodel& linked);

/// Enters into a survey what the question's sources and targets hold, but for irrelevant names. A
/// target is closed under its links: what holds a linked metamodel holds all that it links.
class SurveyedEnds {
 public:
  SurveyedEnds(SurveyState& state, VersionExploration& exploration);

  /// Throws what the application throws of a source.
  void enter();

  /// Something links or requires the name: it is relevant after all.
  void takeUpLinked(const std::u16string& name);

  /// Takes every irrelevant name for a relevant one.
  void takeAllUp();

 private:
  void enterTargets();
  void enterTarget(std::size_t target, const std::u16string& key, const LinkedMetamodel& linked);
  void closeTarget(std::size_t target, const LinkedMetamodel& linked);
  void noteKnownAnswers();
  void enterSources();
  void enterSource(std::size_t source, const std::u16string& key, const LinkedMetamodel& linked);
  bool mayNeedToBringIn() const;
  bool mayLinkAnew() const;
  void takeUp(const std::u16string& name, const LinkedMetamodel& linked);

  SurveyState& state_;
  VersionExploration& exploration_;
  IrrelevantNames irrelevant_;
};

}  // namespace tarn::evolution::pathfinder
