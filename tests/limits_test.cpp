// Searches that are stopped: by a token, a deadline, a ceiling for memory, from within callbacks.
#include <gtest/gtest.h>

#include <stdexcept>

#include "pathfinder/learning/random_choices.hpp"
#include "pathfinder/learning/selection_search.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "platform/exception.hpp"
#include "support/engine_question.hpp"
#include "support/learning_engine.hpp"
#include "support/legal_path.hpp"
#include "support/path_finder_errors.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using Stage = SearchProgress::Stage;
using Reason = SearchStopped::Reason;

/// A question that takes each stage: no two of its metamodels tell why there is no path.
const char* const tightCatalogue =
    "A1 A2 A3 A1>2 A2>3 B1 B2 B3 B1>2 B2>3 C1:A1 C2:A[1,4)+B[1,3) C3:B3+A3 C1>2! C2>3 "
    "D1..3 E1..3 F1..3 G1..3 H1..3 I1..3 J1..3";
const char* const tightStart = "A1 B1 C1 D1 E1 F1 G1 H1 I1 J1";
const char* const tightGoal = "A3 B3 C3 D3 E3 F3 G3 H3 I3 J3";

std::string reasonOf(TestRepository& repository, const SearchLimits& limits) {
  try {
    repository.findPath(selection(tightStart), selection(tightGoal), limits);
    return "answered";
  } catch (const SearchStopped& stopped) {
    return "stopped " + std::to_string(static_cast<int>(stopped.reason()));
  }
}

TEST(Limits, EachEndsTheSearchAndLeavesTheRepositoryUsable) {
  TestRepository untroubled(tightCatalogue);
  const std::string expected =
      describe(untroubled.findPath(selection(tightStart), selection(tightGoal)));
  std::stop_source stopped;
  stopped.request_stop();
  const SearchLimits all[] = {
      {.stop = stopped.get_token()},
      {.deadline = std::chrono::steady_clock::now()},
      {.memory = 0},
  };
  for (const SearchLimits& limits : all) {
    TestRepository repository(tightCatalogue);
    const auto number = std::to_string(&limits - all);
    EXPECT_EQ(reasonOf(repository, limits), "stopped " + number);
    EXPECT_EQ(reasonOf(repository, {}), "answered");
    EXPECT_EQ(describe(repository.findPath(selection(tightStart), selection(tightGoal))), expected);
  }
}

TEST(Limits, ProgressTellsBoundsThatTheAnswerKeepsAndAStopAtAnyCallbackChangesNoAnswer) {
  RandomRun run(300);
  run.ask(randomQuestion, [&](const std::string& text, Random& random) {
    TestQuestion question(text);
    if (!question.isPosed()) return;
    Path path;
    const auto ask = [&](TestQuestion& asked, const SearchLimits& limits) {
      return test::outcomeOf([&]() -> Path {
        path = asked.repository.findPath(asked.sources, asked.targets, asked.direction, limits);
        return path;
      });
    };
    SearchProgress last;
    const std::string expected = ask(question, {.progress = [&](const SearchProgress& progress) {
                                       EXPECT_GE(progress.leastProven, last.leastProven);
                                       last = progress;
                                     }});
    if (path) {
      EXPECT_LE(last.leastProven, weightOf(question.repository, *path));
    }
    run.count("told", path && last.stage != Stage::Preparing);
    const std::size_t calls = question.repository.calls.size();
    if (calls == 0) return;
    TestQuestion stopped(text);
    std::stop_source source;
    std::size_t left = random.upTo(calls);
    stopped.repository.onCall = [&](const std::string&) {
      if (--left == 0) source.request_stop();
    };
    const std::string outcome = ask(stopped, {.stop = source.get_token()});
    stopped.repository.onCall = {};
    run.count("stopped", outcome != expected);
    if (outcome != expected) {
      EXPECT_EQ(outcome.substr(0, 7), "throws ") << outcome;
      EXPECT_NE(outcome.find("No path weighs less than"), std::string::npos) << outcome;
    }
    EXPECT_EQ(ask(stopped, {}), expected);
  });
  run.expectPercentages({{"told", 15}, {"stopped", 10}});
}

/// Watches the paths that a search tells of on its way, and stops it at one of them.
class ToldPaths {
 public:
  ToldPaths(TestQuestion& question, std::size_t stopAt) : question_(question), left_(stopAt) {}

  SearchLimits limits() {
    return {.stop = stop_.get_token(),
            .progress =
                [this](const SearchProgress& progress) {
                  if (progress.leastProven != progress_.leastProven) ++bounds_;
                  progress_ = progress;
                },
            .betterPath = [this](const std::vector<BaselineHop>& path) { note(path); }};
  }

  std::size_t count() const { return count_; }
  std::size_t bounds() const { return bounds_; }
  bool isStopped() const { return stop_.stop_requested(); }
  std::uint64_t lightest() const { return lightest_; }

  void expectBoundsOf(const std::vector<BaselineHop>& answer) const {
    const std::uint64_t weight = weightOf(question_.repository, answer);
    EXPECT_LE(progress_.leastProven, weight);
    EXPECT_GE(lightest_, weight);
    EXPECT_GE(progress_.leastFound.value_or(lightest_), weight);
  }

 private:
  void note(const std::vector<BaselineHop>& path) {
    ++count_;
    const std::uint64_t weight = weightOf(question_.repository, path);
    EXPECT_LT(weight, lightest_);
    lightest_ = weight;
    if (--left_ == 0) stop_.request_stop();
    if (path.empty()) return;
    expectLegal(question_.repository, path);
    EXPECT_NE(std::find(question_.sources.begin(), question_.sources.end(), path.front().from),
              question_.sources.end());
    EXPECT_TRUE(std::any_of(
        question_.targets.begin(), question_.targets.end(),
        [&](const VersionBaseline& target) { return path.back().to.includes(target); }));
  }

  TestQuestion& question_;
  std::size_t left_;
  std::stop_source stop_;
  SearchProgress progress_;
  std::size_t bounds_ = 0;  // proven, one above the other
  std::uint64_t lightest_ = ~std::uint64_t{0};
  std::size_t count_ = 0;
};

TEST(Limits, PathsToldOnTheWayCanBeGoneAndWeighMoreThanTheAnswer) {
  RandomRun run(1000);
  run.ask(randomQuestion, [&](const std::string& text, Random& random) {
    TestQuestion question(text);
    if (!question.isPosed()) return;
    const QuestionText ends(text);
    const bool asSelections = random.chance(30) && ends.beside.empty() &&
                              (ends.from + ends.to).find_first_of(",^*") == std::string::npos;
    const auto askForSelections = [&]() -> std::optional<Path> {
      const auto from = selection(ends.from);
      const auto to = selection(ends.to);
      const auto answer = searchBetweenSelections(accessTo(question.repository), {from, to},
                                                  SelectionPlanning::ByLearning);
      if (!answer.isSettled) return std::nullopt;
      return answer.path ? Path(answer.path->steps) : Path();
    };
    const auto ask = [&]() -> std::optional<Path> {
      try {
        if (asSelections) return askForSelections();
      } catch (const Conflict&) {
        return std::nullopt;  // only what cannot be linked would lead to the target
      }
      const auto learnt = answerByLearning(engineQuestion(question));
      if (!learnt) return std::nullopt;
      const bool isFound = learnt->answer.verdict == SearchAnswer::Verdict::Found;
      return isFound ? Path(learnt->answer.steps) : Path();
    };
    const auto expected = ask();
    if (!expected) return;
    const RandomChoices choices(random());
    ToldPaths told(question, random.chance(50) ? ~std::size_t{0} : random.upTo(3));
    const SearchLimits limits = told.limits();
    try {
      const SearchWatch watch(limits);
      EXPECT_EQ(describe(ask().value()), describe(*expected));
    } catch (const SearchStopped& stopped) {
      EXPECT_TRUE(told.isStopped());
      EXPECT_LE(stopped.progress().leastFound.value(), told.lightest());
    }
    EXPECT_TRUE(*expected || told.count() == 0);
    if (*expected) told.expectBoundsOf(**expected);
    run.count("told", told.count() > 0);
    run.count("told again", told.count() > 1);
    run.count("bounds told", told.bounds() > 2);
    run.count("told as selections", asSelections && told.count() > 0);
    run.count("stopped", told.isStopped());
  });
  run.expectPercentages({{"told", 10},
                         {"told again", 2},
                         {"bounds told", 2},
                         {"told as selections", 1},
                         {"stopped", 2}});
}

TEST(Limits, ASearchInsideAnotherOneIsNotThatOnesProgress) {
  TestRepository inner("A1..40");
  TestRepository outer("B1..3");
  outer.onCall = [&](const std::string&) { inner.findPath(selection("A1"), selection("A40")); };
  std::uint64_t proven = 0;
  const SearchLimits limits{
      .progress = [&](const SearchProgress& progress) { proven = progress.leastProven; }};
  EXPECT_EQ(outer.findPath(selection("B1"), selection("B3"), limits).value().size(), 2U);
  EXPECT_LE(proven, 4U);
}

TEST(Limits, ASearchInsideAnotherOneIsBoundByTheMemoryOfBoth) {
  TestRepository inner("P1..200 Q1..200 A1:P[1,201) B1:Q[1,201)");
  TestRepository outer("B1..3");
  const auto sources = outer.baselines("B1");
  const auto targets = outer.baselines("B3");
  outer.onCall = [&](const std::string& call) {
    if (call == "findHops B1") inner.combine(selection("A1 B1"), SearchLimits{});
  };
  try {
    outer.findPath(sources, targets, forward, SearchLimits{.memory = 1'000'000});
    FAIL() << "not stopped";
  } catch (const SearchStopped& stopped) {
    EXPECT_EQ(stopped.reason(), Reason::MemoryUsedUp);
  }
  EXPECT_EQ(outer.findPath(sources, targets, forward, SearchLimits{}).value().size(), 2U);
}

TEST(Limits, MemoryOfSearchesInsideEachOtherAddsUp) {
  const SearchLimits limits{.memory = 100};
  const SearchLimits none;
  SearchWatch outer(limits);
  SearchWatch inner(none);
  SearchWatch innermost(none);
  outer.noteMemory(60);
  inner.noteMemory(20);
  innermost.noteMemory(20);
  EXPECT_FALSE(innermost.isOver());
  innermost.noteMemory(21);
  EXPECT_TRUE(innermost.isOver());
}

TEST(Limits, WhatProgressThrowsReachesTheCaller) {
  TestRepository repository(tightCatalogue);
  const SearchLimits limits{.progress = [](const SearchProgress&) { throw CallbackFailure(); }};
  EXPECT_THROW(repository.findPath(selection(tightStart), selection(tightGoal), limits),
               CallbackFailure);
}

TEST(Limits, ManyVersionsAreNoProduct) {
  TestRepository row("A1..3000 B1..3000");
  row.isNoting = false;
  const SearchLimits limits{.progress = [](const SearchProgress& progress) {
    EXPECT_NE(progress.stage, Stage::Learning);
  }};
  const auto path = row.findPath(selection("A1 B1"), selection("A3000 B3000"), limits);
  EXPECT_EQ(path.value().size(), 2'999U);
  // Not even beside a product.
  std::string product = "Q1:P[1,6001) Q2:P[1,6001) Q1>2 A1..40";
  for (int i = 1; i <= 6000; ++i) product += " P" + std::to_string(i);
  TestRepository beside(product);
  beside.isNoting = false;
  EXPECT_EQ(beside.findPath(selection("A1 Q1"), selection("A40 Q2")).value().size(), 39U);
  // Nor a long way past what links any version of it.
  TestRepository range("P1..3000 Q1:P[1,3001) Q2:P[1,3001) Q1>2");
  range.isNoting = false;
  EXPECT_EQ(range.findPath(selection("P1 Q1"), selection("P3000 Q2")).value().size(), 2'999U);
}

TEST(Limits, LongWaysOfFewVariantsAreNotLearnt) {
  // Learning would have all of the steps at once.
  std::string content = "B1..210";
  for (int i = 1; i <= 200; ++i) {
    const std::string version = "A" + std::to_string(i);
    content += " " + version + ":B[" + std::to_string(i) + "," + std::to_string(i + 8) + ")";
    if (i < 200) content += " " + version + ">" + std::to_string(i + 1);
  }
  TestRepository repository(content);
  repository.isNoting = false;
  const auto path = repository.findPath(selection("A1"), selection("A200"), {.memory = 5'000'000});
  EXPECT_EQ(path.value().size(), 199U);
}

TEST(Limits, ProductsThatNoMemoryHoldsAreRefused) {
  // Two names with thousands of linked metamodels each, and none to choose between them.
  TestRepository repository("P1..20000 Q1..20000 A1:P[1,20001) B1:Q[1,20001)");
  repository.isNoting = false;
  const std::string message =
      messageOf<std::length_error>([&] { repository.combine(selection("A1 B1")); });
  EXPECT_TRUE(message.starts_with("A selection of 2 metamodels can be combined in more than "))
      << message;
  EXPECT_EQ(repository.combine(selection("A1")).size(), 20000U);
  const SearchLimits limits{.memory = 10'000'000};
  EXPECT_THROW(repository.findPath(repository.combine(selection("A1")), selection("A1 B1"), limits),
               SearchStopped);
}

}  // namespace
}  // namespace test
