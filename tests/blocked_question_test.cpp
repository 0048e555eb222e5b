// What a blocked question tells of itself, held against plain enumeration.
#include "pathfinder/blocked_question.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "pathfinder/learning/random_choices.hpp"
#include "platform/exception.hpp"
#include "support/free_names.hpp"
#include "support/legal_path.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using Measure = BlockedQuestion::EndCost;
using Refused = foundation::core::except::IMsgIDException;

/// Names that need one each of some others, which need one version each of a last one: any two may
/// leave a version of that to each other, and three of them none.
std::string quarrel(Random& random) {
  const auto number = [](std::size_t version) { return std::to_string(version); };
  const std::string letters = "ABCDE";
  const std::size_t names = 2 + random.upTo(3);
  std::string items = "Z1..4";
  std::string from;
  std::string to;
  for (std::size_t i = 0; i < names; ++i) {
    const std::string name(1, letters[i]);
    const std::string between(1, static_cast<char>('P' + i));
    for (std::size_t version = 1; version <= 1 + random.upTo(2); ++version) {
      items += " " + between + number(version) + ":Z" + number(random.upTo(4));
    }
    const std::string& other = random.chance(80) ? between : "Z";
    items += " " + name + "1 " + name + "2:" + other + "[1,4) " + name + "1>2";
    from += name + "1 ";
    to += name + "2 ";
  }
  if (random.chance(50)) from += "Z" + number(random.upTo(2));
  return items + " | " + from + " | " + to + " | forward";
}

/// A question between two selections, in which the source holds most names that there are.
std::string selectedQuestion(Random& random) {
  if (random.chance(10)) return quarrel(random);
  const std::size_t names = random.upTo(4);
  QuestionDraft draft = random.chance(40)   ? QuestionDraft::closed(random, names)
                        : random.chance(20) ? QuestionDraft::rivals(random, names)
                                            : QuestionDraft::either(random, names);
  for (auto& name : draft.names) {
    for (auto& version : name.versions) version.links.clear();
  }
  std::erase_if(draft.hops, [&](const auto& hop) { return !hop.mark.empty() && hop.mark != "!"; });
  std::erase_if(draft.hops, [&](const auto&) { return random.chance(10); });
  draft.from.resize(1);
  draft.to.resize(1);
  if (random.chance(70)) {
    draft.from[0].clear();
    for (const auto& name : draft.names) {
      if (random.chance(95)) draft.from[0].push_back(name.letter + name.start);
    }
  }
  return draft.text(random);
}

/// Such a question, and what plain enumeration tells of it.
class AskedPlainly {
 public:
  explicit AskedPlainly(const QuestionText& text)
      : repository(text.catalogue),
        from(selection(text.from)),
        to(selection(text.to)),
        direction(text.askedDirection()) {
    repository.isNoting = false;
    for (const Metamodel& metamodel : repository.metamodels) {
      try {
        repository.getLinkedMetamodels(metamodel);
      } catch (const Refused&) {
        return;
      }
    }
    sources = repository.combine(from);
  }

  /// Null also when some version cannot be linked, over which enumeration would stumble.
  std::unique_ptr<BlockedQuestion> pose() {
    if (sources.empty()) return nullptr;
    return BlockedQuestion::pose(repository, from, to, direction);
  }

  FreeNames freeNames() {
    FreeNames::Versions goals;
    for (const auto& [name, version] : to) {
      goals.emplace(name, repository.getMetamodel(name, version)->version);
    }
    return {repository, sources, goals, direction};
  }

  /// All baselines that any steps lead to.
  std::vector<VersionBaseline> reachableFrom(std::vector<VersionBaseline> baselines) {
    for (std::size_t next = 0; next < baselines.size(); ++next) {
      const auto steps = repository.getStepsFrom(VersionBaseline(baselines[next]), direction);
      for (const BaselineHop& step : steps) {
        if (std::find(baselines.begin(), baselines.end(), step.to) == baselines.end()) {
          baselines.push_back(step.to);
        }
      }
    }
    return baselines;
  }

  TestRepository repository;
  std::vector<VersionBaseline> sources;
  const Selection from;
  const Selection to;
  const VersionRepository::Direction direction;
};

/// That each exclusion is true, that all of them suffice, and that none can be left out.
void expectProof(FreeNames& plain, const BlockedQuestion::BlockingSet& set) {
  const auto isBlockedWithout = [&](std::size_t left) {
    return !plain.canArrive(set.names, [&](const FreeNames::Versions& held) {
      for (std::size_t i = 0; i < set.exclusions.size(); ++i) {
        const auto& versions = set.exclusions[i];
        const bool holdsAll = std::all_of(versions.begin(), versions.end(), [&](const auto& entry) {
          const auto version = held.find(entry.first);
          return version != held.end() && version->second == entry.second;
        });
        if (i != left && holdsAll) return false;
      }
      return true;
    });
  };
  EXPECT_TRUE(isBlockedWithout(set.exclusions.size()));
  for (std::size_t i = 0; i < set.exclusions.size(); ++i) {
    EXPECT_FALSE(plain.canBeHeld(set.exclusions[i]));
    EXPECT_FALSE(isBlockedWithout(i)) << "exclusion " << i;
  }
}

bool isSame(const BlockedQuestion::BlockingSet& left, const BlockedQuestion::BlockingSet& right) {
  return left.names == right.names && left.exclusions.empty() == right.exclusions.empty();
}

/// What is told within so little memory blocks all the same; whether a limit was reached.
bool expectBestKnown(BlockedQuestion& question, std::size_t memory, FreeNames& plain,
                     const BlockedQuestion::BlockingSet& smallest) {
  try {
    const auto set = question.findBlockingSet({.memory = memory});
    EXPECT_TRUE(set->stopped || set->isSmallest);
    EXPECT_TRUE(set->stopped || isSame(*set, smallest));
    EXPECT_FALSE(plain.canArrive(
        set->names, [&](const FreeNames::Versions& held) { return plain.canBeHeld(held); }));
    return set->stopped.has_value();
  } catch (const SearchStopped&) {
    return false;
  }
}

TEST(BlockedQuestions, TellTheFirstOfTheSmallestSetsThatBlock) {
  RandomRun run(1500);
  run.ask(selectedQuestion, [&](const std::string& text, Random& random) {
    AskedPlainly asked{QuestionText(text)};
    const auto question = asked.pose();
    run.count("posed", question != nullptr);
    if (!question) return;
    const auto set = question->findBlockingSet({});
    FreeNames plain = asked.freeNames();
    const auto expected = plain.firstBlocked();
    run.count("blocked", set.has_value());
    run.count("several", set && set->names.size() > 2);
    ASSERT_EQ(set.has_value(), expected.has_value());
    if (!set) return;
    EXPECT_EQ(set->names, *expected);
    EXPECT_TRUE(set->isSmallest && set->isMinimal && !set->stopped);
    expectProof(plain, *set);
    run.count("of three together",
              std::any_of(set->exclusions.begin(), set->exclusions.end(),
                          [](const auto& versions) { return versions.size() > 2; }));
    run.count("stopped", expectBestKnown(*question, random.below(40'000), plain, *set));
    const RandomChoices choices(random());
    EXPECT_TRUE(isSame(*question->findBlockingSet({}), *set));
  });
  run.expectPercentages({{"posed", 15},
                         {"blocked", 4.5},
                         {"several", 0.25},
                         {"of three together", 0.2},
                         {"stopped", 0.02}});
}

/// A measure that costs little, at random, and seldom forbids.
Measure randomMeasure(const TestRepository& repository, Random& random) {
  std::map<std::string, std::optional<std::uint64_t>> costs;
  for (const Metamodel& metamodel : repository.metamodels) {
    std::optional<std::uint64_t>& cost = costs[brief(metamodel.name, metamodel.version)];
    if (!random.chance(5)) cost = random.chance(30) ? 0 : random.below(5);
  }
  return [costs](const Metamodel& end) { return costs.at(brief(end.name, end.version)); };
}

/// What a baseline costs by each measure; no value when it is forbidden.
std::optional<std::vector<std::uint64_t>> costOf(const VersionBaseline& baseline,
                                                 const std::vector<Measure>& measures) {
  std::vector<std::uint64_t> sums;
  for (const Measure& measure : measures) {
    sums.push_back(0);
    for (const auto& [name, linked] : baseline.metamodels) {
      const auto cost = measure(*linked);
      if (!cost) return std::nullopt;
      sums.back() += *cost;
    }
  }
  return sums;
}

TEST(BlockedQuestions, FindTheCheapestEndAndALeastPathThere) {
  RandomRun run(1500);
  run.ask(selectedQuestion, [&](const std::string& text, Random& random) {
    AskedPlainly asked{QuestionText(text)};
    const auto question = asked.pose();
    if (!question || !question->isClosed()) return;
    std::vector<Measure> measures;
    for (std::size_t i = random.upTo(2); i > 0; --i) {
      measures.push_back(randomMeasure(asked.repository, random));
    }
    std::optional<std::vector<std::uint64_t>> least;
    std::vector<VersionBaseline> cheapest;
    for (const VersionBaseline& baseline : asked.reachableFrom(asked.sources)) {
      const auto cost = costOf(baseline, measures);
      if (!cost || (least && *least < *cost)) continue;
      if (least && *cost < *least) cheapest.clear();
      least = cost;
      cheapest.push_back(baseline);
    }
    const auto nearest = question->findNearest(measures, {});
    ASSERT_EQ(nearest.has_value(), least.has_value());
    run.count("found", nearest && !nearest->path.empty());
    const auto ends = question->findNearestEnds(measures, {});
    ASSERT_EQ(ends.has_value(), least.has_value());
    if (!nearest) return;
    for (const auto& [name, linked] : nearest->baseline.metamodels) {
      const bool isShared =
          std::all_of(cheapest.begin(), cheapest.end(),
                      [&, &name = name, &linked = linked](const VersionBaseline& other) {
                        return other.metamodels.at(name)->version == linked->version;
                      });
      ASSERT_EQ(ends->contains(name), isShared);
      EXPECT_TRUE(!isShared || ends->at(name) == linked->version);
    }
    EXPECT_EQ(costOf(nearest->baseline, measures), least);
    expectLegal(asked.repository, nearest->path);
    const VersionBaseline& end =
        nearest->path.empty() ? nearest->baseline : nearest->path.back().to;
    const VersionBaseline& start =
        nearest->path.empty() ? nearest->baseline : nearest->path.front().from;
    EXPECT_EQ(end, nearest->baseline);
    EXPECT_NE(std::find(asked.sources.begin(), asked.sources.end(), start), asked.sources.end());
    const auto path = asked.repository.findPath(asked.sources, cheapest, asked.direction);
    EXPECT_EQ(weightOf(asked.repository, nearest->path), weightOf(asked.repository, *path));
    const RandomChoices choices(random());
    EXPECT_EQ(describe(question->findNearest(measures, {})->path), describe(nearest->path));
  });
  run.expectPercentages({{"found", 7}});
}

TEST(BlockedQuestions, AreOfTheirKindOnly) {
  TestRepository repository("A1..2 A2>1 B1:A1 B2:A2 B1>2 D1 D2:B2 D1>2");
  const auto isPosed = [&](const std::string& from, const std::string& to,
                           VersionRepository::Direction direction) {
    return BlockedQuestion::pose(repository, selection(from), selection(to), direction) != nullptr;
  };
  EXPECT_TRUE(isPosed("A1 B1", "A1 B2", forward));
  EXPECT_FALSE(isPosed("A1 B1", "A1 B2", anyDirection)) << "hops in a circle";
  EXPECT_FALSE(isPosed("A2 B1", "A1", forward)) << "an inconsistent source";
  EXPECT_FALSE(isPosed("A1", "A2 B2", forward)) << "a name that is not held";
  EXPECT_THROW(isPosed("A1 B1", "A3", forward), Refused);
  const auto open = BlockedQuestion::pose(repository, selection("A1 D1"), selection("D2"), forward);
  EXPECT_FALSE(open->isClosed());
  EXPECT_FALSE(open->findBlockingSet({}));
  EXPECT_THROW(open->findNearest({}, {}), std::logic_error);
}

TEST(BlockedQuestions, SayWhatAnApplicationLinksThatNoDependencyAsksFor) {
  TestRepository repository("A1=C1 A2 C1");
  const auto question =
      BlockedQuestion::pose(repository, selection("A1"), selection("A2"), forward);
  EXPECT_THROW(question->findNearest({}, {}), std::logic_error);
}

/// Whatever the application throws leaves the question as it was, and limits hold.
TEST(BlockedQuestions, ObeyLimits) {
  TestRepository repository("S1..3 A1:S1 A2:S2 A1>2 B1:S1 B2:S3 B1>2");
  const auto question =
      BlockedQuestion::pose(repository, selection("A1 B1"), selection("A2 B2"), forward);
  const SearchLimits past{.deadline = std::chrono::steady_clock::now()};
  EXPECT_THROW(BlockedQuestion::pose(repository, selection("A1 B1"), {}, forward, past),
               SearchStopped);
  EXPECT_THROW(question->findBlockingSet(past), SearchStopped);
  EXPECT_THROW(question->findBlockingSet({.memory = 1}), SearchStopped);
  EXPECT_THROW(question->findNearest({}, past), SearchStopped);
  repository.failing.insert("loadMetamodel A1");
  EXPECT_THROW(question->findNearest({}, {}), CallbackFailure);
  repository.failing.clear();
  EXPECT_EQ(question->findBlockingSet({})->names, (FreeNames::Names{u"A", u"B"}));
  auto stage = SearchProgress::Stage::Preparing;
  const SearchLimits watched{
      .progress = [&](const SearchProgress& progress) { stage = progress.stage; }};
  EXPECT_TRUE(question->findNearest({}, watched)->path.empty());
  EXPECT_EQ(stage, SearchProgress::Stage::Learning);
}

}  // namespace
}  // namespace test
