// The ties of steps, held against the steps that the path finder makes of parts of them.
#include "catalogue/picture/step_ties.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/text.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// The only step from one selection to another that takes just the hops between them.
BaselineHop stepBetween(TestRepository& repository, const std::string& from,
                        const std::string& to) {
  return repository.findPath({repository.baseline(from)}, repository.baselines(to), anyDirection)
      .value()
      .at(0);
}

std::string bundlesText(const BaselineHop& step, const std::vector<StepTie>& ties) {
  std::string text;
  for (const auto& bundle : bundlesOf(step, ties)) {
    for (const auto& name : bundle) text += fl::i18n::ustring_to_utf8(name);
    text += " ";
  }
  return text;
}

TEST(StepTies, NameRequirementsAndDivideWhatIsMergedOnlyForItsWeight) {
  const std::tuple<std::string, std::string, std::string, std::string, std::string> cases[] = {
      {"A1..2 B1:A1 B2:A2 B1>2", "A1 B1", "A2 B2",
       "A-B: B 1.0.0 needs A 1.0.0, not 2.0.0\nB-A: B 2.0.0 needs A 2.0.0, not 1.0.0\n", "AB "},
      // B's new version wants A's, which could have gone before; D goes by itself.
      {"A1..2 B1:A[1,3) B2:A2 B1>2 D1..2", "A1 B1 D1", "A2 B2 D2",
       "B-A: B 2.0.0 needs A 2.0.0, not 1.0.0\n", "A D B "},
      // C enters with B, and itself wants A to have moved.
      {"A1..2 B1 B2:C1 B1>2 C1:A2 D1..2", "A1 B1 D1", "A2 B2 D2",
       "B-C: B 2.0.0 needs C 1.0.0, which enters\nC-A: C 1.0.0 needs A 2.0.0, not 1.0.0\n",
       "A D BC "},
  };
  for (const auto& [catalogue, from, to, expected, bundles] : cases) {
    TestRepository repository(catalogue);
    const BaselineHop step = stepBetween(repository, from, to);
    const auto ties = tiesOf(repository, step);
    std::string text;
    for (const StepTie& tie : ties) {
      text += fl::i18n::ustring_to_utf8(tie.mover) + "-" +
              fl::i18n::ustring_to_utf8(tie.companion) + ": " + describe(tie) + "\n";
    }
    EXPECT_EQ(text, expected) << catalogue;
    EXPECT_EQ(bundlesText(step, ties), bundles) << catalogue;
  }
}

/// Some of a step's hops.
LockstepHop chosen(const BaselineHop& step, std::size_t choice) {
  LockstepHop hops;
  for (const auto& [name, hop] : std::map(step.hops.begin(), step.hops.end())) {
    if (choice % 2 == 1) hops.emplace(name, hop);
    choice /= 2;
  }
  return hops;
}

class TiedStep {
 public:
  TiedStep(TestRepository& repository, const BaselineHop& step)
      : repository_(repository), step_(step), ties_(tiesOf(repository, step)) {}

  /// Where nothing enters, hops make a step exactly when no tie leads out of them.
  void expectTiesToDecide() {
    for (std::size_t choice = 1; choice < std::size_t{1} << step_.hops.size(); ++choice) {
      const LockstepHop hops = chosen(step_, choice);
      const bool isWhole = std::none_of(ties_.begin(), ties_.end(), [&](const StepTie& tie) {
        return hops.contains(tie.mover) && !hops.contains(tie.companion);
      });
      const bool isStep = !repository_.createTargetBaseline(step_.from, hops).empty();
      EXPECT_EQ(isWhole, isStep) << dumpLockstepHop(step_.hops) << " " << dumpLockstepHop(hops);
    }
  }

  /// One bundle after the other gets there, and no part of a bundle is a step.
  void expectBundlesInOrder() {
    VersionBaseline held = step_.from;
    std::size_t moved = 0;
    for (const auto& bundle : bundlesOf(step_, ties_)) {
      LockstepHop hops;
      for (const auto& name : bundle) hops.emplace(name, step_.hops.at(name));
      for (const auto& name : bundle) {
        LockstepHop fewer = hops;
        fewer.erase(name);
        EXPECT_TRUE(fewer.empty() || repository_.createTargetBaseline(held, fewer).empty());
      }
      const auto reached = repository_.createTargetBaseline(held, hops);
      ASSERT_FALSE(reached.empty()) << dumpLockstepHop(hops);
      held = reached.front();
      moved += hops.size();
    }
    EXPECT_EQ(moved, step_.hops.size());
  }

 private:
  TestRepository& repository_;
  const BaselineHop& step_;
  const std::vector<StepTie> ties_;
};

TEST(StepTies, AgreeWithThePathFinderOnRandomSteps) {
  RandomRun run(500);
  run.ask([](Random& random) { return QuestionDraft::loose(random, random.upTo(4)).text(random); },
          [&](const std::string& text, Random&) {
            const QuestionText question(text);
            TestRepository repository(question.catalogue);
            std::vector<BaselineHop> steps;
            try {
              for (const auto& source : repository.baselines(question.from)) {
                for (auto& step : repository.getStepsFrom(source, anyDirection))
                  steps.push_back(step);
              }
            } catch (const std::exception&) {
              return;  // what cannot be linked is not what is asked about here
            }
            for (const BaselineHop& step : steps) {
              const bool isClosed = step.from.metamodels.size() == step.to.metamodels.size();
              if (step.hops.size() < 2 || step.hops.size() > 5 || !isClosed) continue;
              TiedStep tied(repository, step);
              tied.expectTiesToDecide();
              tied.expectBundlesInOrder();
              run.count("tied", !tiesOf(repository, step).empty());
            }
          });
  run.expectPercentages({{"tied", 2}});
}

}  // namespace
}  // namespace test
