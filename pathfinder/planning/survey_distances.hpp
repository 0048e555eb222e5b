#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

/// How far it is from the sources to where a plan can end, each name taken alone, as far as a
/// survey has come.
class SurveyDistances {
 public:
  explicit SurveyDistances(const SurveyState& state) : state_(state) {}

  /// The least distance of a version of the name with which a plan can end at a target; no value
  /// when none has been met. Of a name that can be brought in, who knows what may still do that.
  std::optional<std::uint64_t> distanceFor(const SurveyedName& name, std::size_t target) const;

  /// The least total that a plan can have, by the least distance of each name and the steps that
  /// these take.
  std::uint64_t leastTotal() const;

  /// How far a name has to be surveyed when a plan may cost so much more than the least.
  std::uint64_t radiusFor(const SurveyedName& name, std::uint64_t slack) const;

 private:
  bool suits(const SurveyedVersion& version, std::size_t target) const;
  bool agrees(const LinkedMetamodel& variant, std::size_t target) const;

  const SurveyState& state_;
};

}  // namespace tarn::evolution::pathfinder
