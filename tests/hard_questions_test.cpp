// Asks small questions of both engines, and the same with so many names beside them that they are
// large. But for the records, nobody may see a difference.
#include <gtest/gtest.h>

#include <algorithm>

#include "pathfinder/planning/goal_directed_search.hpp"
#include "pathfinder/search/exhaustive_search.hpp"
#include "support/brute_force.hpp"
#include "support/child_process.hpp"
#include "support/engine_question.hpp"
#include "support/hard_questions.hpp"
#include "support/items.hpp"
#include "support/learning_engine.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using Direction = VersionRepository::Direction;
using Verdict = SearchAnswer::Verdict;

constexpr std::uint64_t combinationsTried = 50'000;  // at most, for a small question
constexpr std::size_t stepsTried = 20'000;           // by the model

const std::string unlinkable = "throws tarn_evo:messages/ConflictingDependencies";

bool throws(const std::string& outcome) {
  return outcome.starts_with("throws ");
}

std::string shown(const std::string& outcome) {
  return outcome.empty() ? "nothing to do" : outcome;
}

/// What an outcome is, without the particulars.
std::string kindOf(const std::string& outcome) {
  if (throws(outcome)) return outcome.substr(0, outcome.find(' ', outcome.find(' ') + 1));
  return outcome.find("=>") == std::string::npos ? shown(outcome) : "a path";
}

/// What an engine answers, as `outcomeOf` tells it; "unsettled" when it leaves that to another.
std::string outcomeOf(const std::function<SearchAnswer()>& search, SearchAnswer& answer) {
  const std::string outcome = test::outcomeOf([&]() -> Path {
    answer = search();
    if (answer.verdict != Verdict::Found) return std::nullopt;
    return answer.steps;
  });
  const bool isUnsettled = answer.verdict == Verdict::Unsettled && !throws(outcome);
  return isUnsettled ? "unsettled" : outcome;
}

bool haveSameBaselines(const SearchAnswer& left, const SearchAnswer& right) {
  return left.target == right.target && left.source == right.source &&
         std::equal(left.steps.begin(), left.steps.end(), right.steps.begin(), right.steps.end(),
                    [](const BaselineHop& one, const BaselineHop& other) {
                      return one.from == other.from && one.to == other.to;
                    });
}

/// A path as a small question has it, of whose names beside only some are inside.
Path withoutNamesBeside(Path path, const QuestionText& small) {
  if (!path) return path;
  const auto isBeside = [&](const auto& entry) {
    const auto letter = static_cast<char>(entry.first[0]);
    return small.beside.find(letter) != std::string::npos &&
           small.from.find(letter) == std::string::npos;
  };
  for (BaselineHop& step : *path) {
    std::erase_if(step.hops, isBeside);
    std::erase_if(step.to.metamodels, isBeside);
  }
  return path;
}

bool linksOwnName(const std::shared_ptr<LinkedMetamodel>& linked) {
  return linked->linkedMetamodels.contains(linked->name);
}

/// What a baseline has to hold to include a target.
BruteForce::Goal goalOf(const PlainModel& model, const TestRepository& repository,
                        const VersionBaseline& target) {
  constexpr std::size_t never = ~std::size_t{0};
  BruteForce::Goal goal;
  const auto require = [&](const LinkedMetamodel& linked) {
    const std::size_t place = model.placeOf(linked);
    const auto [known, isNew] = goal.holds.emplace(linked.name, place);
    if (known->second != place) known->second = never;
  };
  for (const auto& [name, linked] : target.metamodels) {
    if (!linked) {
      goal.lacks.insert(name);
      continue;
    }
    require(*linked);
    for (const auto& link : linked->linkedMetamodels) require(*link.second);
    const auto& own = repository.loaded;
    const bool isOwn = std::find(own.begin(), own.end(), linked) != own.end();
    if (!isOwn || linked->name != name) goal.holds[linked->name] = never;
  }
  return goal;
}

/// What the model answers, which throws what fails or goes round it.
struct ModelAnswer {
  ModelAnswer(const TestQuestion& question, PlainModel::Failures failures) {
    PlainModel model(question.repository, failures);
    std::vector<BruteForce::Goal> goals;
    std::vector<PlainModel::Baseline> sources;
    for (const auto& target : question.targets) {
      goals.push_back(goalOf(model, question.repository, target));
    }
    for (const auto& source : question.sources) sources.push_back(model.baselineOf(source));
    try {
      const BruteForce answer(model, sources, goals, question.direction, stepsTried);
      outcome = answer.path ? model.describe(*answer.path) : "none";
      if (answer.path && !answer.path->empty()) {
        losesHop = model.losesHop(sources[answer.source], question.direction);
        for (auto step = answer.path->begin(); step + 1 != answer.path->end(); ++step) {
          losesHop |= model.losesHop(step->to, question.direction);
        }
      }
    } catch (const PlainModel::Failure&) {
      outcome = "throws";
    }
    isKnown = model.isExact();
  }

  std::string outcome;
  bool losesHop = false;  ///< whether a baseline that the path leaves offers a hop to no version
  bool isKnown = false;   ///< not when a version links another one of its own name
};

/// Takes away hops that fail or lead to what does, so that an engine has to go round it.
void leaveOutWhatFails(TestRepository& repository, Direction direction) {
  const auto fails = [&](const std::u16string& key, const Hop& hop) {
    if (repository.failing.contains("findHops " + brief(key, hop.from))) return true;
    try {
      if (direction != anyDirection && !repository.getMetamodel(hop.name, hop.to)) return true;
      const auto target = repository.getMetamodel(key, hop.to);
      if (target) repository.getLinkedMetamodels(*target);
      return false;
    } catch (...) {
      return true;
    }
  };
  std::erase_if(repository.hops, [&](const Hop& hop) { return fails(hop.name, hop); });
  std::erase_if(repository.foreignHops,
                [&](const auto& offered) { return fails(offered.first, offered.second); });
  std::erase_if(repository.failing,
                [](const std::string& call) { return call.starts_with("findHops "); });
}

/// Planning has been given up.
struct LeftToTryingEverything : std::exception {};

SearchLimits untilLeft() {
  using Stage = SearchProgress::Stage;
  const auto last = std::make_shared<Stage>(Stage::Preparing);
  return {.progress = [last](const SearchProgress& progress) {
    const Stage before = std::exchange(*last, progress.stage);
    if (progress.stage == Stage::Exhaustive && before > progress.stage) {
      throw LeftToTryingEverything();
    }
  }};
}

/// Asks a question in every way, each time in a repository of its own.
class Comparison {
 public:
  Comparison(const std::string& text, const Difficulty& difficulty)
      : text_(text), difficulty_(difficulty) {}

  /// The kinds of the case, with commas between them, and on the lines after them what is wrong.
  std::string run() {
    try {
      // The first of those that have to move makes a difference: something moves.
      small_ = text_.withFirstInside({">"});
      askModel();
      // And any does where a hop has all linked anew, or where versions agree only with names that
      // stand before them.
      if (!isModelKnown_) small_ = text_.withFirstInside({"", ".", ">"});
      TestQuestion small(small_);
      if (small.isPosed()) ask(small);
    } catch (const BruteForce::TooMany&) {
    }
    return kinds_ + "\n" + fault_;
  }

 private:
  void note(const std::string& kind, bool is) {
    if (is) kinds_ += kind + ",";
  }

  void fail(const std::string& fault) { fault_ += fault + "\n"; }

  void askModel() {
    isModelKnown_ = false;
    roundWay_ = "unknown";
    const TestQuestion question(small_);
    const auto& loaded = question.repository.loaded;
    const bool isKnown = small_.from.find_first_of("^*") == std::string::npos &&
                         std::none_of(loaded.begin(), loaded.end(), linksOwnName);
    if (!isKnown || !question.isPosed()) return;
    const ModelAnswer avoiding(question, PlainModel::Failures::Avoided);
    const ModelAnswer throwing(question, PlainModel::Failures::Thrown);
    if (!avoiding.isKnown || !throwing.isKnown) return;
    isModelKnown_ = true;
    mayThrow_ = throwing.outcome == "throws";
    roundWay_ = avoiding.outcome;
    mayGoRound_ = roundWay_ != "none" && !avoiding.losesHop;
  }

  void ask(TestQuestion& small) {
    const SearchQuestion asked = engineQuestion(small);
    SearchAnswer answer;
    expected_ = outcomeOf([&] { return searchExhaustively(asked, combinationsTried); }, answer);
    if (expected_ == "unsettled") return;
    if (!isModelKnown_ && throws(expected_)) askForRoundWay();
    noteKinds(small.repository, answer);
    if (isModelKnown_ && (throws(expected_) ? !mayThrow_ : expected_ != roundWay_)) {
      fail("The small question has the wrong answer.\n\n" + shown(expected_) +
           "\n\nIt should have:\n" + shown(roundWay_));
    }
    askLearning(asked, answer);
    if (itemsIn(text_.beside).empty()) {
      askOtherEngine(asked, answer);
    } else {
      askLarge();
    }
  }

  /// What the model does not know has to be asked of an engine; where the way round is too long to
  /// try everything on it, of the one that plans.
  void askForRoundWay() {
    TestQuestion round(small_);
    leaveOutWhatFails(round.repository, round.direction);
    const SearchQuestion asked = engineQuestion(round);
    SearchAnswer answer;
    roundWay_ = outcomeOf([&] { return searchExhaustively(asked, combinationsTried); }, answer);
    if (roundWay_ == "unsettled") {
      roundWay_ = outcomeOf([&] { return searchGoalDirected(asked); }, answer);
    }
    mayGoRound_ = answer.verdict == Verdict::Found;
  }

  void noteKinds(const TestRepository& repository, const SearchAnswer& answer) {
    note("posed", true);
    note("path", !throws(expected_) && expected_ != "none");
    note("none", expected_ == "none");
    note("throws", throws(expected_));
    const auto isCalled = [&](const std::string& call) {
      return std::find(repository.calls.begin(), repository.calls.end(), call) !=
             repository.calls.end();
    };
    const auto isAnyOf = [](const auto& list, const auto& is) {
      return std::any_of(list.begin(), list.end(), is);
    };
    note("host links", isAnyOf(repository.loaded, [&](const auto& linked) {
           return repository.hostLinks.contains(brief(linked->name, linked->version));
         }));
    note("foreign hops", isAnyOf(repository.foreignHops, [&](const auto& offered) {
           return isCalled("findHops " + brief(offered.first, offered.second.from));
         }));
    note("other answers", isAnyOf(repository.otherAnswers, [&](const auto& answered) {
           return isCalled("getMetamodel " + answered.first);
         }));
    note("brought in", !answer.steps.empty() && answer.steps.back().to.metamodels.size() >
                                                    answer.source->metamodels.size());
  }

  void askOtherEngine(const SearchQuestion& asked, const SearchAnswer& expected) {
    TestQuestion fresh(text_);
    SearchAnswer answer;
    const std::string found =
        outcomeOf([&] { return searchGoalDirected(engineQuestion(fresh)); }, answer);
    // A plan that cannot be carried out leaves the question to the exhaustive search.
    if (found == "unsettled") return;
    compare(found, "the goal-directed search");
    if (throws(expected_) || throws(found) || !fault_.empty()) return;
    if (!haveSameBaselines(searchGoalDirected(asked), expected)) {
      fail("The engines reach other variants of the same versions.\n\n" + shown(expected_));
    }
  }

  /// The search that learns, from the start and where planning cannot settle the question.
  void askLearning(const SearchQuestion& asked, const SearchAnswer& expected) {
    if (throws(expected_) || !fault_.empty()) return;
    const auto learnt = answerByLearning(asked);
    note("learnt conflicts", learnt && learnt->metConflict);
    if (learnt) compareLearnt(learnt->answer, expected);
    const SearchAnswer planned = searchGoalDirected(asked, learningPlanner());
    if (planned.verdict != Verdict::Unsettled) compareLearnt(planned, expected);
  }

  void compareLearnt(const SearchAnswer& learnt, const SearchAnswer& expected) {
    SearchAnswer answer;
    compare(outcomeOf([&] { return learnt; }, answer), "the search that learns");
    if (!haveSameBaselines(answer, expected)) fail("Learning leads to other variants.");
  }

  void askLarge() {
    TestQuestion large(text_.withBesideInside());
    const std::string found = test::outcomeOf([&] {
      const SearchLimits limits = difficulty_.mayBeLeft ? untilLeft() : SearchLimits{};
      Path path = large.repository.findPath(large.sources, large.targets, large.direction, limits);
      return withoutNamesBeside(std::move(path), small_);
    });
    const bool isLeft = found.find("LeftToTryingEverything") != std::string::npos;
    note("left to trying everything", isLeft);
    if (isLeft) return;
    compare(found, "the large question");
  }

  void compare(const std::string& found, const std::string& asked) {
    if (found == expected_) return;
    const bool goesRound = throws(expected_) && mayGoRound_ && found == roundWay_;
    note("goes round", goesRound);
    // Of several things that fail, which one is met first may differ.
    const bool meetsOther = throws(expected_) && throws(found) && severalFail({expected_, found});
    if (goesRound || meetsOther) return;
    fail("The small question: " + kindOf(expected_) + "; " + asked + ": " + kindOf(found) + "\n\n" +
         shown(expected_) + "\n\n" + shown(found) + "\n\nThe way round what fails:\n" +
         shown(roundWay_));
  }

  /// Whether different things fail. Any catalogue may have versions that cannot be linked.
  bool severalFail(const std::vector<std::string>& outcomes) const {
    if (difficulty_.severalFail) return true;
    if (std::find(outcomes.begin(), outcomes.end(), unlinkable) == outcomes.end()) return false;
    TestRepository repository(text_.catalogue);
    repository.failing.clear();
    const auto& all = repository.metamodels;
    return std::any_of(all.begin(), all.end(), [&](const Metamodel& metamodel) {
      const auto link = [&]() -> Path {
        repository.getLinkedMetamodels(metamodel);
        return std::nullopt;
      };
      return test::outcomeOf(link) == unlinkable;
    });
  }

  const QuestionText text_;
  const Difficulty& difficulty_;
  QuestionText small_ = text_;  // with some of the names beside inside
  std::string expected_;
  std::string kinds_;
  std::string fault_;

  // What the model answers to the small question.
  bool isModelKnown_ = false;
  bool mayThrow_ = false;    // something that fails is within reach
  std::string roundWay_;     // the answer when what fails is avoided
  bool mayGoRound_ = false;  // a large question need not throw what lies off the path
};

class HardQuestions : public testing::TestWithParam<Difficulty> {};

TEST_P(HardQuestions, AreAnsweredAlikeHoweverTheyAreAsked) {
  RandomRun run(400);
  const auto make = [](Random& random) { return hardQuestion(GetParam(), random); };
  run.ask(make, [&](const std::string& text, Random&) {
    // What a large question is left to may never end.
    const std::string answer = answerOfChild([&] { return Comparison(text, GetParam()).run(); },
                                             run.isShrinking() ? 1 : 2);
    const std::size_t end = answer.find('\n');  // none when the child did not come so far
    if (end + 1 != answer.size()) ADD_FAILURE() << answer.substr(end + 1);
    if (end == std::string::npos) return;
    for (const std::string& kind : parted(answer.substr(0, end), ',')) run.count(kind);
  });
  std::map<std::string, double> least = GetParam().least;
  least.insert({{"posed", 9}, {"path", 5}});
  run.expectPercentages(least);
  EXPECT_LE(run.counted("left to trying everything"), 3 + run.cases() / 200);
}

INSTANTIATE_TEST_SUITE_P(With, HardQuestions, testing::ValuesIn(difficulties()),
                         [](const auto& with) { return std::string(with.param.name); });

}  // namespace
}  // namespace test
