// Compares the library's answers with plain ones, on random small catalogues.
#include <gtest/gtest.h>

#include "platform/exception.hpp"
#include "support/brute_force.hpp"
#include "support/legal_path.hpp"
#include "support/random_cases.hpp"
#include "support/random_question.hpp"

namespace test {
namespace {

using Refused = foundation::core::except::IMsgIDException;

std::vector<PlainModel::Baseline> plain(const PlainModel& model,
                                        const std::vector<VersionBaseline>& baselines) {
  std::vector<PlainModel::Baseline> result;
  result.reserve(baselines.size());
  for (const VersionBaseline& baseline : baselines) result.push_back(model.baselineOf(baseline));
  return result;
}

TEST(Oracle, LinkedMetamodelsAreExactlyTheConsistentChoices) {
  std::size_t variants = 0;
  const unsigned catalogues = randomCases(400);
  for (unsigned seed = 1; seed <= catalogues; ++seed) {
    RandomQuestion question(seed);
    PlainModel model(question.repository);
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + question.catalogue);
    for (const Metamodel& metamodel : question.repository.metamodels) {
      const std::size_t place = model.find(metamodel.name, metamodel.version).value();
      try {
        const auto& linked = question.repository.getLinkedMetamodels(metamodel);
        std::vector<VersionBaseline> found;
        found.reserve(linked.size());
        for (const auto& variant : linked) {
          found.push_back(VersionBaseline::create({variant}).value());
        }
        EXPECT_EQ(describe(found), model.describe(model.linked(place))) << metamodel;
        variants += linked.size();
      } catch (const Refused&) {
        EXPECT_THROW(model.linked(place), PlainModel::Conflict) << metamodel;
      }
    }
  }
  EXPECT_GT(variants, 2 * catalogues);
}

TEST(Oracle, FindPathAgreesWithBruteForce) {
  std::size_t longPaths = 0;
  const unsigned questions = randomCases(1500);
  for (unsigned seed = 1; seed <= questions; ++seed) {
    RandomQuestion question(seed);
    PlainModel model(question.repository);
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + question.catalogue);
    try {
      const auto targets = plain(model, question.targets);
      const BruteForce expected(model, plain(model, question.sources), targets, question.direction);
      const Path path =
          question.repository.findPath(question.sources, question.targets, question.direction);
      ASSERT_EQ(describe(path), expected.path ? model.describe(*expected.path) : "none");
      if (path) expectLegal(question.repository, *path);
      if (path && path->size() >= 3) ++longPaths;
    } catch (const PlainModel::Conflict&) {
      // A version that cannot be linked is within reach.
    }
  }
  EXPECT_GT(longPaths, questions / 15);
}

}  // namespace
}  // namespace test
