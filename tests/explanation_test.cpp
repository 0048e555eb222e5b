// Explanations on random catalogues, held against plain enumeration of all that can be reached.
#include "catalogue/explanation/explanation.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/exception.hpp"
#include "support/catalogue_json.hpp"
#include "support/clash_check.hpp"
#include "support/explained_case.hpp"
#include "support/free_names.hpp"
#include "support/legal_path.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// All baselines that any steps lead to.
std::vector<VersionBaseline> reachableFrom(VersionRepository& repository,
                                           std::vector<VersionBaseline> baselines,
                                           VersionRepository::Direction direction) {
  for (std::size_t next = 0; next < baselines.size(); ++next) {
    for (BaselineHop& step : repository.getStepsFrom(VersionBaseline(baselines[next]), direction)) {
      const bool isNew = std::find(baselines.begin(), baselines.end(), step.to) == baselines.end();
      if (isNew) baselines.push_back(std::move(step.to));
    }
  }
  return baselines;
}

/// Whether those named can be brought to their goals in a model that has no use for the others.
bool canReachPart(const ExplainedCase& random, const std::vector<VersionBaseline>& sources,
                  const std::vector<std::u16string>& names,
                  VersionRepository::Direction direction) {
  std::vector<VersionBaseline> parts;
  Versions goals;
  for (const std::u16string& name : names) {
    if (random.goals.contains(name)) goals.emplace(name, random.goals.at(name));
  }
  for (const VersionBaseline& source : sources) {
    const bool staysWhole = random.repository->hasRequirements() ||
                            std::any_of(goals.begin(), goals.end(), [&](const auto& goal) {
                              return !source.metamodels.contains(goal.first);
                            });
    VersionBaseline part;
    for (const auto& [name, linked] : source.metamodels) {
      const bool isNamed = std::find(names.begin(), names.end(), name) != names.end();
      if (isNamed || staysWhole) part.tryEmplace(linked);
    }
    parts.push_back(part);
  }
  const auto reachable = reachableFrom(*random.repository, parts, direction);
  return std::any_of(reachable.begin(), reachable.end(), [&](const VersionBaseline& baseline) {
    return countHeld(baseline, goals) == goals.size();
  });
}

void expectNearest(ExplainedCase& random, const std::vector<VersionBaseline>& sources,
                   const NearestBaseline& nearest, VersionRepository::Direction direction) {
  std::pair<std::size_t, std::size_t> least{~0U, 0};
  for (const auto& baseline : reachableFrom(*random.repository, sources, direction)) {
    least = std::min(least, random.remoteness(baseline, direction));
  }
  EXPECT_TRUE(nearest.isProven);
  EXPECT_EQ(random.remoteness(nearest.baseline, direction), least);
  EXPECT_EQ(nearest.arrived.size(), countHeld(nearest.baseline, random.goals));
  EXPECT_EQ(nearest.arrived.size() + nearest.unfinished.size(), random.goals.size());
  expectLegal(*random.repository, nearest.path);
  if (!nearest.path.empty()) {
    EXPECT_EQ(nearest.path.back().to, nearest.baseline);
    const std::string start = describe(nearest.path.front().from);
    EXPECT_TRUE(std::any_of(sources.begin(), sources.end(), [&](const VersionBaseline& source) {
      return describe(source) == start;
    }));
  }
}

bool speaksOf(const Clash& clash, const std::u16string& name) {
  return clash.contested == name ||
         std::count(clash.parties.begin(), clash.parties.end(), name) > 0;
}

/// All clashes of an explanation.
std::vector<Clash> clashesOf(const Explanation& explanation) {
  std::vector<Clash> result;
  if (const auto* side = std::get_if<InconsistentSelection>(&explanation.reason)) {
    if (side->clash) result.push_back(*side->clash);
  } else if (const auto* never = std::get_if<NeverTogether>(&explanation.reason)) {
    result = never->otherClashes;
    for (const BlockedHop& blocked : never->blocked) result.push_back(blocked.clash);
  }
  return result;
}

/// That each remedy of an inconsistent selection is one.
void expectRemedies(ExplainedCase& random, const InconsistentSelection& reason) {
  const auto& selected =
      reason.side == QuestionSide::From ? random.question.from : random.question.to;
  for (const auto& [name, versions] : reason.remedies) {
    for (const VersionId& version : versions) {
      Selection changed = selected;
      changed.at(name) = version;
      EXPECT_FALSE(random.repository->combine(changed).empty());
    }
  }
}

/// That no name is blamed without a reason.
void expectReasons(const NeverTogether& reason) {
  for (const std::u16string& name : reason.names) {
    const bool isBlocked =
        std::any_of(reason.blocked.begin(), reason.blocked.end(),
                    [&](const BlockedHop& blocked) { return speaksOf(blocked.clash, name); });
    const auto& others = reason.otherClashes;
    EXPECT_TRUE(isBlocked || std::any_of(others.begin(), others.end(), [&](const Clash& clash) {
                  return speaksOf(clash, name);
                }));
  }
}

void expectMinimal(const ExplainedCase& random, const std::vector<VersionBaseline>& sources,
                   const NeverTogether& reason, VersionRepository::Direction direction) {
  EXPECT_TRUE(reason.isMinimal);
  if (reason.isSmallest && reason.names.size() > 1) {
    EXPECT_EQ(FreeNames(*random.repository, sources, random.goals, direction).firstBlocked(),
              reason.names);
    expectReasons(reason);
    return;
  }
  EXPECT_FALSE(canReachPart(random, sources, reason.names, direction));
  for (const std::u16string& name : reason.names) {
    std::vector<std::u16string> others = reason.names;
    std::erase(others, name);
    EXPECT_TRUE(canReachPart(random, sources, others, direction));
  }
}

TEST(Explanation, AgreesWithEnumerationOnRandomCatalogues) {
  RandomRun run(2000);
  std::size_t clashes = 0;
  std::size_t toldInPart = 0;
  run.ask(questionableCase, [&](const std::string& text, Random&) {
    ExplainedCase random{QuestionText(text)};
    CatalogueRepository& repository = *random.repository;
    const Explanation explanation = explain(repository, random.question);
    run.count("reason " + std::to_string(explanation.reason.index()));
    for (const Clash& clash : clashesOf(explanation)) {
      ClashCheck check(repository, clash);
      ++clashes;
      if (!check.isOfRequirements()) {
        toldInPart += !check.isWhole();
        continue;
      }
      check.run();
      EXPECT_TRUE(check.isWhole());
      run.count("clashes of requirements");
      run.count("chains", clash.requirements.size() > 2);
    }
    if (const auto* side = std::get_if<InconsistentSelection>(&explanation.reason)) {
      expectRemedies(random, *side);
      run.count("remedies", std::any_of(side->remedies.begin(), side->remedies.end(),
                                        [](const auto& each) { return !each.versions.empty(); }));
    }
    try {
      const auto path = repository.findPath(random.question.from, random.question.to);
      EXPECT_EQ(std::holds_alternative<PathExists>(explanation.reason), path.has_value());
      if (path || !explanation.nearest || anyLinksOwnName(repository)) return;
      const auto sources = repository.combine(random.question.from);
      const auto direction = repository.computeDirection(sources[0], random.someTarget());
      expectNearest(random, sources, *explanation.nearest, direction);
      if (const auto* reason = std::get_if<NeverTogether>(&explanation.reason)) {
        expectMinimal(random, sources, *reason, direction);
        run.count("blocked hops", !reason->blocked.empty());
        run.count("proven smallest", reason->isSmallest);
        run.count("other clashes", !reason->otherClashes.empty());
      }
    } catch (const foundation::core::except::IMsgIDException&) {
      // The path finder, and so enumeration, stumbles over a version that cannot be linked.
      EXPECT_FALSE(std::holds_alternative<PathExists>(explanation.reason));
    }
  });
  run.expectPercentages({{"reason 0", 10},
                         {"reason 2", 10},
                         {"reason 3", 2},
                         {"reason 4", 0.25},
                         {"reason 5", 0.35},
                         {"blocked hops", 0.3},
                         {"clashes of requirements", 1},
                         {"chains", 0.1},
                         {"remedies", 5}});
  EXPECT_LE(toldInPart, 5 + clashes / 100);
}

/// Where what is nearest says that a version suits, and only something else that it does not.
TEST(Explanation, OfWhatCannotBeLinkedTogetherIsWhole) {
  for (const char* text :
       {"U2 U3 P2 P3:U[3,4) H1 H2:U[2,3)+P[2,4) | H1 | P3 H2 |",
        "G1 G3 X1:G[1,2) V1:G[1,4)+X[1,2) D1 | D1 | G3 V1 |",
        "W2 W3:&H[1,2) H1 H2 U1:W[1,3) U2:W[2,4)+H[2,3) W2>3 U1>2 | U1 | W3 |",
        "A1:C[1,3) B1:C[2,4) C1 C2:D[1,2) C3 D1 D2 E1:D[2,3) | E1 | A1 B1 E1 |"}) {
    SCOPED_TRACE(text);
    ExplainedCase asked{QuestionText(text)};
    const std::vector<Clash> clashes = clashesOf(explain(*asked.repository, asked.question));
    ASSERT_EQ(clashes.size(), 1U);
    EXPECT_TRUE(ClashCheck(*asked.repository, clashes.front()).isWhole());
  }
}

}  // namespace
}  // namespace test
