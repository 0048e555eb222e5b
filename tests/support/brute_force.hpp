#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/plain_model.hpp"

namespace test {

/// Finds the first of the least-weight paths without a frontier: improves the best way to each
/// baseline until nothing changes. Throws PlainModel::Failure when it meets what fails, be it off
/// every path, unless the model avoids it.
class BruteForce {
 public:
  using Baseline = PlainModel::Baseline;
  using Steps = std::vector<PlainModel::Step>;

  /// Thrown when there are more steps than it can be asked to try.
  struct TooMany {};

  /// A target: what a baseline has to hold, and names that it must not.
  struct Goal {
    Baseline holds;
    std::set<std::u16string> lacks = {};
  };

  BruteForce(PlainModel& model, const std::vector<Baseline>& sources, std::vector<Goal> targets,
             VersionRepository::Direction direction, std::size_t mostSteps = ~std::size_t{0});
  BruteForce(PlainModel& model, const std::vector<Baseline>& sources,
             const std::vector<Baseline>& targets, VersionRepository::Direction direction,
             std::size_t mostSteps = ~std::size_t{0});

  std::optional<Steps> path;  ///< none when there is none
  std::size_t source = 0;     ///< the source that the path starts from
  std::size_t target = 0;     ///< the first target that the path's end includes

 private:
  /// What decides among ways to a baseline and among targets: the weight, then the weights up to
  /// each baseline before, from the last one back to the source; the source's place; the places of
  /// the steps in the lists of those that leave their baselines, from the first step on.
  using Rank = std::vector<std::uint64_t>;

  /// The best way to one baseline, and the steps that go on from there, which the model keeps.
  struct Way {
    Rank rank;
    const Way* before = nullptr;  // null at a source
    std::size_t place = 0;        // of the last step among those of `before`; of the source
    const Steps* steps = nullptr;
    bool isNew = true;  // its steps have not been tried since it was found
  };

  bool improve();
  bool goOn(const Way& way);
  bool offer(const Baseline& baseline, const Rank& rank, const Way* before, std::size_t place);
  const Way* bestAtTarget();
  void takePathTo(const Way& end);

  PlainModel& model_;
  const std::vector<Goal> targets_;
  const VersionRepository::Direction direction_;
  std::map<Baseline, Way> ways_;
  std::size_t stepsLeft_;
};

}  // namespace test
