// Compares the library's answers with brute force, on random small catalogues.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "platform/exception.hpp"
#include "support/random_question.hpp"

namespace test {
namespace {

using Refused = foundation::core::except::IMsgIDException;
using Hops = std::vector<BaselineHop>;

/// Finds the first of the least-weight paths without a frontier: improves the best way to each
/// baseline until nothing changes.
class BruteForce {
 public:
  explicit BruteForce(RandomQuestion& question) : question_(question) {
    for (std::size_t i = 0; i < question.sources.size(); ++i) {
      offer(question.sources[i], {0, i}, {});
    }
    while (improve()) continue;
  }

  Path answer;

 private:
  /// What decides among ways to a baseline and among targets: the weight, then the weights up to
  /// each baseline before, from the last one back to the source; the source's place; the places of
  /// the steps in the lists of those that leave their baselines, from the first step on.
  using Rank = std::vector<std::uint64_t>;

  /// The best way to one baseline, and the steps that go on from there.
  struct Way {
    Rank rank;
    Hops path;
    Hops steps;
  };

  /// Tries every step after every way; returns whether one led to a better way.
  bool improve() {
    bool isBetter = false;
    for (const auto& [baseline, way] : ways_) {
      for (std::size_t i = 0; i < way.steps.size(); ++i) {
        Hops path = way.path;
        path.push_back(way.steps[i]);
        Rank rank{way.rank[0] + question_.repository.getWeight(path.back().hops)};
        rank.insert(rank.end(), way.rank.begin(), way.rank.end());
        rank.push_back(i);
        isBetter |= offer(path.back().to, rank, path);
      }
    }
    return isBetter;
  }

  /// Takes a way to a baseline if it is the best one so far.
  bool offer(const VersionBaseline& baseline, const Rank& rank, const Hops& path) {
    Way& way = ways_[{baseline.metamodels.begin(), baseline.metamodels.end()}];
    if (way.rank.empty()) {
      way.steps = stepsFrom(baseline);
    } else if (way.rank <= rank) {
      return false;
    }
    way.rank = rank;
    way.path = path;
    const auto isIncluded = [&](const auto& target) { return baseline.includes(target); };
    if (std::any_of(question_.targets.begin(), question_.targets.end(), isIncluded) &&
        (!answer || rank < answerRank_)) {
      answer = path;
      answerRank_ = rank;
    }
    return true;
  }

  /// Every choice of hops, the first name changing fastest, with every baseline that it leads to.
  Hops stepsFrom(const VersionBaseline& from) {
    TestRepository& repository = question_.repository;
    std::vector<LockstepHop> choices(1);
    for (const auto& [name, linked] : std::map(from.metamodels.begin(), from.metamodels.end())) {
      const std::vector<LockstepHop> withoutThis = choices;
      for (const Hop& hop : hopsFrom(repository, *linked)) {
        const Metamodel target = *repository.getMetamodel(name, hop.to);
        const bool goesBack = repository.getDirection(*linked, target) == backward;
        if (goesBack && question_.direction == forward) continue;
        for (LockstepHop choice : withoutThis) {
          choice.emplace(name, hop);
          choices.push_back(choice);
        }
      }
    }
    Hops steps;
    for (const LockstepHop& choice : choices) {
      for (const auto& to : repository.createTargetBaseline(from, choice)) {
        steps.emplace_back(from, to, choice);
      }
    }
    return steps;
  }

  RandomQuestion& question_;
  std::map<std::map<std::u16string, std::shared_ptr<LinkedMetamodel>>, Way> ways_;
  Rank answerRank_;
};

/// Every way to meet the open dependencies, and those of what meets them, with one version for each
/// name.
std::set<std::string> choices(TestRepository& repository, std::vector<Dependency> open,
                              const VersionBaseline& chosen) {
  if (open.empty()) return {describe(chosen)};
  const Dependency next = open.back();
  open.pop_back();
  std::vector<Metamodel> candidates;
  repository.findMetamodels(next.name, next.range, candidates);
  std::set<std::string> result;
  for (const Metamodel& candidate : candidates) {
    VersionBaseline extended = chosen;
    std::vector<Dependency> stillOpen = open;
    auto& held = extended.metamodels[candidate.name];
    if (!held) {
      held = std::make_shared<LinkedMetamodel>(TestRepository::accessTag(), candidate);
      stillOpen.insert(stillOpen.end(), held->dependencies.begin(), held->dependencies.end());
    }
    if (held->version == candidate.version) {
      result.merge(choices(repository, stillOpen, extended));
    }
  }
  return result;
}

TEST(Oracle, LinkedMetamodelsAreExactlyTheConsistentChoices) {
  std::size_t variants = 0;
  for (unsigned seed = 1; seed <= 400; ++seed) {
    RandomQuestion question(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + question.catalogue);
    for (const Metamodel& metamodel : question.repository.metamodels) {
      std::set<std::string> found;
      try {
        for (const auto& variant : question.repository.getLinkedMetamodels(metamodel)) {
          found.insert(describe(VersionBaseline{variant->linkedMetamodels}));
        }
      } catch (const Refused&) {
        continue;  // the metamodel itself, or a candidate that it needs none of
      }
      variants += found.size();
      EXPECT_EQ(found, choices(question.repository, metamodel.dependencies, {})) << metamodel;
    }
  }
  EXPECT_GT(variants, 1000U);
}

TEST(Oracle, FindPathAgreesWithBruteForce) {
  std::size_t longPaths = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    RandomQuestion question(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + question.catalogue);
    try {
      const Path expected = BruteForce(question).answer;
      const Path path =
          question.repository.findPath(question.sources, question.targets, question.direction);
      ASSERT_EQ(describe(path), describe(expected));
      if (path) expectLegal(question.repository, *path);
      if (path && path->size() >= 3) ++longPaths;
    } catch (const Refused&) {
      // A version that cannot be linked is within reach.
    }
  }
  EXPECT_GT(longPaths, 100U);
}

}  // namespace
}  // namespace test
