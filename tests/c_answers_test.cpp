// Random catalogues asked through the C interface, from rows and by callbacks: the answers are
// those of the C++ interface, also from threads and where callbacks fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <thread>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/picture/path_plan.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/range_union.hpp"
#include "messages/messages.hpp"
#include "platform/exception.hpp"
#include "support/c_host.hpp"
#include "support/c_questions.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// The selection as C hands it on: which of several unknown versions is named follows the order of
/// the map, and that the order in which it was filled.
Selection handedOn(const Selection& selection) {
  Selection result;
  for (const auto& each : selection) result.insert(each);
  return result;
}

/// What C++ answers.
class Reference {
 public:
  explicit Reference(const CatalogueContent& content) : repository_(Catalogue(content)) {}

  Outcome path(const Selection& from, const Selection& to) {
    return written([&](std::ostream& out) {
      const Question question{handedOn(from), handedOn(to)};
      const auto path = repository_.findPath(question.from, question.to);
      if (path) writePlanJson(makePlan(repository_, repository_, question, *path), out);
      return path.has_value();
    });
  }

  Outcome steps(const Selection& at) {
    return written([&](std::ostream& out) {
      const auto listings = listSteps(repository_, handedOn(at), VersionRepository::Unknown, 1000);
      if (!listings.empty()) writeStepsJson(listings, out);
      return !listings.empty();
    });
  }

  Outcome explanation(const Selection& from, const Selection& to) {
    return written([&](std::ostream& out) {
      writeExplanationJson(explain(repository_, {handedOn(from), handedOn(to)}, 20),
                           weightsOf(repository_), out);
      return true;
    });
  }

 private:
  using CannotBeLinked =
      foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies>;
  using UnknownVersion =
      foundation::core::except::Exception<tarn_evo::messages::InvalidFamilyVersion>;

  static Outcome written(const std::function<bool(std::ostream&)>& write) {
    try {
      std::ostringstream out;
      return {write(out) ? TARN_EVOLUTION_OK : TARN_EVOLUTION_NO_PATH, out.str()};
    } catch (const CannotBeLinked& error) {
      return {TARN_EVOLUTION_CANNOT_BE_LINKED, error.what()};
    } catch (const UnknownVersion& error) {
      return {TARN_EVOLUTION_UNKNOWN_VERSION, error.what()};
    } catch (const TooManyCombinations& error) {
      return {TARN_EVOLUTION_TOO_MANY_COMBINATIONS, error.what()};
    }
  }

  CatalogueRepository repository_;
};

void expectSame(const Outcome& found, const Outcome& expected) {
  EXPECT_EQ(found.status, expected.status);
  EXPECT_EQ(found.text, expected.text);
}

struct RandomCase {
  explicit RandomCase(const QuestionText& text)
      : content(contentOf(TestRepository(text.catalogue))),
        from(selection(text.from)),
        to(selection(text.to)) {}

  CatalogueContent content;
  Selection from;
  Selection to;
};

/// A question between two selections, some of them with what is not there.
std::string selectionQuestion(Random& random) {
  QuestionDraft draft = QuestionDraft::either(random, random.upTo(4));
  for (auto* ends : {&draft.from, &draft.to}) {
    ends->assign(1, {});
    for (const auto& name : draft.names) {
      const auto& goal = ends == &draft.from ? name.start : name.goal;
      if (random.chance(80)) ends->front().push_back(name.letter + goal);
    }
  }
  if (random.chance(50)) draft.addRequirements(random, 40);
  return draft.text(random);
}

/// Lets some dependencies be met by another version as well.
void widen(CatalogueContent& content, Random& random) {
  const auto rows = content.metamodels;
  for (CatalogueMetamodel& row : content.metamodels) {
    for (auto& [name, range] : row.descriptor.dependencies) {
      const auto& other = random.oneOf(rows).descriptor;
      if (other.name != name || !random.chance(50)) continue;
      range = unionOf({range, VersionRange::singleVersion(other.version)});
    }
  }
}

TEST(CInterface, AnswersAreThoseOfCxx) {
  RandomRun run(150);
  run.ask(selectionQuestion, [&](const std::string& text, Random& random) {
    RandomCase asked{QuestionText(text)};
    if (random.chance(10)) asked.to[u"Z"] = v(1);
    widen(asked.content, random);
    const CatalogueContent split = listed(asked.content);
    run.count("requirements",
              std::any_of(split.metamodels.begin(), split.metamodels.end(),
                          [](const auto& row) { return !row.requirements.empty(); }));
    Host host(asked.content);
    host.isExact = random.chance(50);
    host.tellsRequirements = random.chance(50);
    {
      const Handle byRows = openRows(random.chance(50) ? asked.content : split);
      const Handle byCallbacks = host.open();
      Reference reference(asked.content);
      for (auto* catalogue : {byRows.get(), byCallbacks.get()}) {
        const Outcome path = reference.path(asked.from, asked.to);
        run.count("path", path.status == TARN_EVOLUTION_OK);
        run.count("no path", path.status == TARN_EVOLUTION_NO_PATH);
        expectSame(pathBy(catalogue, asked.from, asked.to), path);
        expectSame(stepsBy(catalogue, asked.from), reference.steps(asked.from));
        expectSame(explanationBy(catalogue, asked.from, asked.to),
                   reference.explanation(asked.from, asked.to));
      }
      EXPECT_EQ(host.releases, 0);
    }
    EXPECT_EQ(host.releases, 1);
  });
  run.expectPercentages({{"path", 5}, {"no path", 2}, {"requirements", 10}});
}

/// Any call of the host fails, in each manner: an answer that depends on it ends, any other is
/// given. Then the same catalogue answers as ever.
TEST(CInterface, FailingCallbacksEndTheQuestionOnly) {
  RandomRun run(40);
  run.ask(selectionQuestion, [](const std::string& text, Random& random) {
    const RandomCase asked{QuestionText(text)};
    const std::vector<std::function<Outcome(tarn_evolution_catalogue*)>> questions{
        [&](auto* catalogue) { return pathBy(catalogue, asked.from, asked.to); },
        [&](auto* catalogue) { return stepsBy(catalogue, asked.from); },
        [&](auto* catalogue) { return explanationBy(catalogue, asked.from, asked.to); }};
    const auto& ask = random.oneOf(questions);
    Host quiet(asked.content);
    quiet.tellsRequirements = random.chance(50);
    const Outcome expected = ask(quiet.open().get());
    const std::size_t stride = 1 + quiet.calls / 8;
    for (std::size_t failing = random.upTo(stride); failing <= quiet.calls; failing += stride) {
      Host host(asked.content);
      host.failing = failing;
      host.tellsRequirements = quiet.tellsRequirements;
      host.manner = static_cast<int>(random.below(3));
      const Handle catalogue = host.open();
      const Outcome outcome = ask(catalogue.get());
      const auto failure =
          host.manner == 2 ? TARN_EVOLUTION_OTHER_ERROR : TARN_EVOLUTION_CALLBACK_FAILED;
      if (outcome.status == failure) {
        EXPECT_NE(outcome.text, "");
      } else {
        expectSame(outcome, expected);  // which needed no such call
      }
      host.failing = 0;
      expectSame(ask(catalogue.get()), expected);
    }
  });
}

/// Threads ask one catalogue of callbacks, and one of them ends another's question.
TEST(CInterfaceConcurrency, ThreadsAskOneCatalogue) {
  RandomRun run(5);
  run.ask(selectionQuestion, [](const std::string& text, Random&) {
    const RandomCase asked{QuestionText(text)};
    Host host(asked.content);
    const Handle catalogue = host.open();
    Reference reference(asked.content);
    const Outcome path = reference.path(asked.from, asked.to);
    const Outcome explanation = reference.explanation(asked.from, asked.to);
    tarn_evolution_stop* const stop = tarn_evolution_stop_new();
    tarn_evolution_limits limits = TARN_EVOLUTION_NO_LIMITS;
    limits.stop = stop;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back(
          [&] { expectSame(pathBy(catalogue.get(), asked.from, asked.to), path); });
      threads.emplace_back(
          [&] { expectSame(explanationBy(catalogue.get(), asked.from, asked.to), explanation); });
      threads.emplace_back([&] {
        const Outcome outcome = pathBy(catalogue.get(), asked.from, asked.to, &limits);
        if (outcome.status != TARN_EVOLUTION_STOPPED) expectSame(outcome, path);
      });
    }
    tarn_evolution_stop_request(stop);
    for (auto& thread : threads) thread.join();
    tarn_evolution_stop_free(stop);
  });
}

}  // namespace
}  // namespace test
