#pragma once

#include <algorithm>
#include <deque>
#include <exception>
#include <utility>
#include <vector>

#include "pathfinder/limits/application_failure.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::pathfinder {

/// What the application failed at while dependencies were surveyed, by version. Kept, because the
/// answer need not depend on it: a question is answered without what failed, and then, if anything
/// did, with the best that may be assumed of it.
class DependencyFailures {
 public:
  enum class Attempt {
    Hops,  ///< or look at where they lead
    Needs,
  };

  DependencyFailures() = default;

  /// Keeps nothing: attempts throw what the application throws.
  static DependencyFailures thrown() {
    DependencyFailures failures;
    failures.areThrown_ = true;
    return failures;
  }

  /// Runs an action that asks the application of a version; false when it fails, or has failed
  /// before: then it is not asked again.
  template <class Action>
  bool attempt(const Metamodel& version, Attempt what, const Action& action) {
    if (areThrown_) {
      action();
      return true;
    }
    const bool hasFailed = std::any_of(all_.begin(), all_.end(), [&](const Failure& failure) {
      return failure.attempt == what && failure.version == version;
    });
    if (hasFailed) return false;
    std::exception_ptr exception = failureOf(action);
    if (!exception) return true;
    add(version, what, std::move(exception));
    return false;
  }

  void add(const Metamodel& version, Attempt what, std::exception_ptr exception) {
    all_.push_back({version, what, std::move(exception)});
  }

  bool any() const { return !all_.empty(); }

  bool contain(const Metamodel& version) const {
    return std::any_of(all_.begin(), all_.end(),
                       [&](const Failure& failure) { return failure.version == version; });
  }

  /// From here on: a version of which it is not known what it needs needs nothing, and hops that
  /// are not known lead everywhere.
  void assumeBest() { isBestAssumed_ = true; }
  bool isBestAssumed() const { return isBestAssumed_; }

  /// What may have been tried with a version.
  struct Tried {
    const Metamodel* version;
    Attempt attempt;
  };

  /// Throws what failed first of this, if anything did, in the order of asking.
  void throwFirstOf(const std::vector<Tried>& tried) const {
    for (const Failure& failure : all_) {
      const bool isAmong = std::any_of(tried.begin(), tried.end(), [&](const Tried& each) {
        return each.attempt == failure.attempt && *each.version == failure.version;
      });
      if (isAmong) std::rethrow_exception(failure.exception);
    }
  }

 private:
  struct Failure {
    Metamodel version;
    Attempt attempt;
    std::exception_ptr exception;
  };

  std::deque<Failure> all_;
  bool areThrown_ = false;
  bool isBestAssumed_ = false;
};

}  // namespace tarn::evolution::pathfinder
