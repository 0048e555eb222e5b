#pragma once

#include <exception>
#include <utility>
#include <vector>

#include "messages/report_exception.hpp"
#include "pathfinder/limits/application_failure.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

struct SurveyState;
struct SurveyedVersion;

/// What was tried with a version when something failed.
enum class SurveyAttempt {
  Link,
  AskForHops,  ///< or look at where they lead
  Compare,     ///< with what targets hold: no plan depends on that
};

/// What an application failed at while it was surveyed, or what conflicts. Kept, because the answer
/// need not depend on it. What stops a search is no such failure.
class SurveyFailures {
 public:
  /// Runs an action that asks the application of a version; false when it failed, which is noted.
  template <class Action>
  bool attempt(SurveyedVersion& version, SurveyAttempt what, const Action& action) {
    bool isConflict = false;
    std::exception_ptr exception = failureOf([&] {
      try {
        action();
      } catch (const Conflict&) {
        isConflict = true;
        throw;
      }
    });
    if (!exception) return true;
    all_.push_back({&version, what, std::move(exception), isConflict});
    return false;
  }

  /// Whether there are any but conflicts, which no path can hold.
  bool anyButConflicts() const;

  /// Marks the versions of these as those of which the best is assumed.
  void assumeBest() const;

  /// Throws what the first of some versions of which the best is assumed failed with, as far as
  /// they did; in the order in which they were met.
  void throwFirstOf(const std::vector<VersionIndex>& versions) const;

 private:
  using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                       std::exception, void>;
  struct Failure {
    SurveyedVersion* version;
    SurveyAttempt attempt;
    std::exception_ptr exception;
    bool isConflict;
  };

  friend std::vector<struct SurveyedFault> faultsOf(const SurveyState& state);

  std::vector<Failure> all_;
};

/// What a search meets that tries every step from every baseline, once one holds a version.
struct SurveyedFault {
  const SurveyedVersion* holding;
  std::exception_ptr exception;  ///< null for a hop to a version that is not there
};

/// All of them in what has been surveyed; what is nearest to the sources comes first, each name
/// taken alone.
std::vector<SurveyedFault> faultsOf(const SurveyState& state);

}  // namespace tarn::evolution::pathfinder
