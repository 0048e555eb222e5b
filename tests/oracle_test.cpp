// Compares the library's answers with plain ones, on random small catalogues.
#include <gtest/gtest.h>

#include "platform/exception.hpp"
#include "support/brute_force.hpp"
#include "support/legal_path.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"

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
  RandomRun run(400);
  run.ask(randomQuestion, [&](const std::string& text, Random&) {
    TestRepository repository(QuestionText(text).catalogue);
    PlainModel model(repository);
    for (const Metamodel& metamodel : repository.metamodels) {
      const std::size_t place = model.placeOf(metamodel);
      try {
        const auto& linked = repository.getLinkedMetamodels(metamodel);
        std::vector<VersionBaseline> found;
        found.reserve(linked.size());
        for (const auto& variant : linked) {
          found.push_back(VersionBaseline::create({variant}).value());
        }
        EXPECT_EQ(describe(found), model.describe(model.linked(place))) << metamodel;
        run.count("several variants", linked.size() > 1);
      } catch (const Refused&) {
        EXPECT_THROW(model.linked(place), PlainModel::Conflict) << metamodel;
      }
    }
  });
  run.expectPercentages({{"several variants", 40}});
}

TEST(Oracle, FindPathAgreesWithBruteForce) {
  RandomRun run(1500);
  run.ask(randomQuestion, [&](const std::string& text, Random&) {
    TestQuestion question(text);
    PlainModel model(question.repository);
    try {
      const BruteForce expected(model, plain(model, question.sources),
                                plain(model, question.targets), question.direction);
      const Path path =
          question.repository.findPath(question.sources, question.targets, question.direction);
      EXPECT_EQ(describe(path), expected.path ? model.describe(*expected.path) : "none");
      if (path) expectLegal(question.repository, *path);
      run.count("long paths", path && path->size() >= 3);
    } catch (const PlainModel::Conflict&) {
      // A version that cannot be linked is within reach.
    }
  });
  run.expectPercentages({{"long paths", 6}});
}

}  // namespace
}  // namespace test
