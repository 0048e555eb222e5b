#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// What a repository has to answer, worked out from its content by plain values: without linked
/// metamodels, their identity, caches or a search engine. Slow, for small catalogues in which no
/// name depends on itself, directly or through others.
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

  /// Thrown for what cannot be linked.
  struct Conflict {};

  explicit PlainModel(const TestRepository& repository) : repository_(repository) {}

  const Metamodel& metamodel(std::size_t place) const { return repository_.metamodels[place]; }

  /// The place of the metamodel that a repository finds for a version.
  std::optional<std::size_t> find(const std::u16string& name, const VersionId& version) const;

  bool includes(const VersionRange& range, const Metamodel& metamodel) const;
  VersionRepository::Direction direction(std::size_t from, std::size_t to) const;
  VersionRepository::Direction direction(const Baseline& from, const Baseline& to) const;

  /// Every consistent choice for the metamodel and all that it needs, in the repository's order.
  const std::vector<Baseline>& linked(std::size_t metamodel);

  /// Every consistent baseline of a selection.
  std::vector<Baseline> combine(const Baseline& selection);

  /// Every step that leaves a baseline. Valid until the repository's content has changed.
  const std::vector<Step>& stepsFrom(const Baseline& from, VersionRepository::Direction direction);

  /// The same baseline as the repository's.
  Baseline baselineOf(const VersionBaseline& baseline) const;

  /// As the repository's answers are described.
  std::string describe(const Baseline& baseline) const;
  std::string describe(const std::vector<Baseline>& baselines) const;
  std::string describe(const std::vector<Step>& steps) const;

 private:
  std::optional<SemVer> semVerOf(const Metamodel& metamodel) const;
  std::vector<Hop> hopsFrom(std::size_t from, VersionRepository::Direction direction) const;
  std::vector<Baseline> optionsFor(const Dependency& dependency);
  std::vector<Step> tryStepsFrom(const Baseline& from, VersionRepository::Direction direction);

  const TestRepository& repository_;
  std::map<std::size_t, std::vector<Baseline>> linked_;

  // What was worked out for a repository of so many metamodels and hops, to which some may be added.
  std::map<std::pair<Baseline, VersionRepository::Direction>, std::vector<Step>> steps_;
  std::pair<std::size_t, std::size_t> stepsAmong_;
};

}  // namespace test
