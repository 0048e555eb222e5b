#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// What a repository has to answer, worked out from its content by plain values: without linked
/// metamodels, their identity, caches or a search engine. Slow, for small catalogues. Knows nothing
/// of versions that link another one of their own name (see `isExact`).
///
/// Looks at the repository's content as it is when asked, but remembers how metamodels are linked,
/// and steps until something is added.
class PlainModel {
 public:
  /// A version for each name, by its place among the repository's metamodels.
  using Baseline = std::map<std::u16string, std::size_t>;

  struct Step {
    LockstepHop hops;
    Baseline to;
  };

  /// Thrown for what the application cannot give.
  struct Failure {};

  /// Thrown for what cannot be linked.
  struct Conflict : Failure {};

  /// What is done about hops that fail or lead to what does: it is thrown, or one goes other ways.
  enum class Failures { Thrown, Avoided };

  explicit PlainModel(const TestRepository& repository, Failures failures = Failures::Thrown)
      : repository_(repository), failures_(failures) {}

  const Metamodel& metamodel(std::size_t place) const { return repository_.metamodels[place]; }

  /// The place of a descriptor; that of the first, when there are several equal ones.
  std::size_t placeOf(const Metamodel& descriptor) const;

  /// The place of the metamodel that a repository finds for a version.
  std::optional<std::size_t> find(const std::u16string& name, const VersionId& version) const;

  bool includes(const VersionRange& range, const Metamodel& metamodel) const;
  VersionRepository::Direction direction(std::size_t from, std::size_t to) const;
  VersionRepository::Direction direction(const Baseline& from, const Baseline& to) const;

  /// Every consistent choice for the metamodel and all that it needs, in the repository's order.
  const std::vector<Baseline>& linked(std::size_t metamodel);

  /// Whether a baseline holds nothing that a requirement excludes, and, if it has to be complete,
  /// all that one asks for.
  bool meetsRequirements(const Baseline& baseline, bool isComplete) const;

  /// Every consistent baseline of a selection.
  std::vector<Baseline> combine(const Baseline& selection);

  /// Whether a baseline offers a hop, to be judged by its direction, to a version that is not
  /// there.
  bool losesHop(const Baseline& baseline, VersionRepository::Direction direction) const;

  /// Every step that leaves a baseline. Valid until the repository's content has changed.
  const std::vector<Step>& stepsFrom(const Baseline& from, VersionRepository::Direction direction);

  /// The same baseline as the repository's.
  Baseline baselineOf(const VersionBaseline& baseline) const;

  /// As the repository's answers are described.
  std::string describe(const Baseline& baseline) const;
  std::string describe(const std::vector<Baseline>& baselines) const;
  std::string describe(const std::vector<Step>& steps) const;

  /// Whether nothing was met that the model does not know.
  bool isExact() const { return isExact_; }

 private:
  std::optional<SemVer> semVerOf(const Metamodel& metamodel) const;
  bool fails(const std::string& operation, std::size_t metamodel) const;
  std::vector<Hop> offeredHops(std::size_t from) const;
  std::vector<Hop> hopsFrom(std::size_t from, VersionRepository::Direction direction) const;
  std::optional<Baseline> selectionAfter(const Baseline& from, const LockstepHop& hops) const;
  std::vector<Baseline> optionsFor(const Dependency& dependency);
  void extend(std::size_t linking, std::vector<Baseline>& choices,
              const std::vector<Baseline>& options);
  void linkAsHost(std::size_t linking, Baseline& choice);
  std::vector<Step> tryStepsFrom(const Baseline& from, VersionRepository::Direction direction);

  const TestRepository& repository_;
  const Failures failures_;
  bool isExact_ = true;
  std::set<std::size_t> pending_;  // being linked
  std::map<std::size_t, std::vector<Baseline>> linked_;

  // What was worked out for a repository of so many metamodels and hops, which may get more.
  std::map<std::pair<Baseline, VersionRepository::Direction>, std::vector<Step>> steps_;
  std::pair<std::size_t, std::size_t> stepsAmong_;
};

}  // namespace test
