// Minimal and streamed steps, and what a selection leaves open, held against plain enumeration.
#include "catalogue/explanation/steps_out.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/explanation/loose_ends.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/utf16.hpp"
#include "platform/text.hpp"
#include "support/legal_path.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

std::unique_ptr<CatalogueRepository> catalogueOf(const std::string& text) {
  return std::make_unique<CatalogueRepository>(Catalogue(contentOf(TestRepository(text))));
}

/// "A>2 B>2, C>2" for the steps of all groups and baselines.
std::string describe(const StepsOut& steps) {
  std::string text;
  for (const StepListing& listing : steps.listings) {
    for (const auto& group : listing.groups) {
      for (const auto& step : group.picture.steps) {
        text += text.empty() ? "" : ", ";
        for (const auto& move : step.moves) {
          text += group.picture.lanes[move.lane].name + ">" + move.to.substr(0, 1);
        }
      }
    }
  }
  return text;
}

TEST(StepsOut, AreMinimalAndBesideWhatCannotBeLinked) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"A1..2 B1..2 C1:A1 C2:A2 C1>2", "A1 B1 C1", "B>2, A>2C>2", ""},
      {"A1..3 B1..2 A1>3", "A1 B1", "A>2, A>3, B>2", ""},
      // B's newer version enters C, which wants A's newer one.
      {"A1..2 B1 B2:C1 B1>2 C1:A2", "A1 B1", "A>2", ""},
      {"A1 A2:Z9 A1>2 B1..2 Z1", "A1 B1", "B>2", "A"},
  };
  for (const auto& [catalogue, at, expected, unlinkable] : cases) {
    const auto repository = catalogueOf(catalogue);
    const StepsOut steps = findMinimalSteps(*repository, selection(at), {});
    EXPECT_EQ(describe(steps), expected) << catalogue;
    std::string refused;
    for (const auto& each : steps.unlinkable) {
      refused += fl::i18n::ustring_to_utf8(each.chain.front().name);
    }
    EXPECT_EQ(refused, unlinkable) << catalogue;
    EXPECT_TRUE(steps.isComplete);
  }
  // What moves alone makes as many steps, not as many as there are combinations.
  std::string wide;
  std::string at;
  for (char name = 'A'; name <= 'Z'; ++name) {
    wide += std::string(1, name) + "1..2 ";
    at += std::string(1, name) + "1 ";
  }
  const auto repository = catalogueOf(wide);
  const StepsOut all = findMinimalSteps(*repository, selection(at), {anyDirection, 26});
  EXPECT_EQ(all.listings.at(0).groups.at(0).picture.steps.size(), 26);
  EXPECT_TRUE(all.isComplete);
  const StepsOut cut = findMinimalSteps(*repository, selection(at), {anyDirection, 25});
  EXPECT_FALSE(cut.isComplete);
}

using Hops = std::map<std::u16string, std::pair<std::string, std::string>>;

Hops hopsOf(const BaselineHop& step) {
  Hops hops;
  for (const auto& [name, hop] : step.hops) {
    hops.emplace(name, std::pair(printed(hop.from), printed(hop.to)));
  }
  return hops;
}

TEST(StepsOut, AgreeWithEnumerationOnRandomCatalogues) {
  RandomRun run(400);
  const auto make = [](Random& random) {
    QuestionDraft draft = QuestionDraft::loose(random, random.upTo(5));
    if (random.chance(50)) draft.addRequirements(random, 40);
    return draft.text(random);
  };
  run.ask(make, [&](const std::string& text, Random& random) {
    const QuestionText question(text);
    const auto repository = catalogueOf(question.catalogue);
    const Selection at = selection(question.from.substr(0, question.from.find(" , ")));
    const auto direction = random.chance(50) ? forward : anyDirection;
    std::vector<BaselineHop> all;
    std::size_t baselines = 0;
    try {
      for (const auto& baseline : repository->combine(at)) {
        if (linksOwnName(baseline)) return;  // what stands for it is decided by linking alone
        ++baselines;
        for (auto& step : repository->getStepsFrom(baseline, direction)) {
          const bool moves = std::all_of(step.hops.begin(), step.hops.end(), [](const auto& hop) {
            return hop.second.from != hop.second.to;
          });
          if (moves) all.push_back(std::move(step));
        }
      }
    } catch (const std::exception&) {
      run.count("unlinkable");
      return;
    }
    std::vector<Hops> minimal;
    for (const BaselineHop& step : all) {
      const Hops own = hopsOf(step);
      const bool isMinimal = std::none_of(all.begin(), all.end(), [&](const BaselineHop& other) {
        const Hops part = hopsOf(other);
        return other.from == step.from && part.size() < own.size() &&
               std::includes(own.begin(), own.end(), part.begin(), part.end());
      });
      if (isMinimal) minimal.push_back(own);
      run.count("not minimal", !isMinimal);
    }
    const StepsOut found = findMinimalSteps(*repository, at, {direction, 100'000});
    ASSERT_EQ(found.listings.size(), baselines);
    std::size_t count = 0;
    for (const auto& listing : found.listings) {
      for (const auto& group : listing.groups) count += group.picture.steps.size();
    }
    EXPECT_EQ(count, minimal.size());
    std::string lines;
    streamSteps(*repository, at, {direction, 1'000'000}, StepForm::JsonLines, Colouring::Plain,
                [&](const std::string& line) { lines += line; });
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'),
              static_cast<std::ptrdiff_t>(all.size()));
    const LooseEnds ends = findLooseEnds(*repository, at, 1'000);
    EXPECT_EQ(ends.baselines, baselines);
    EXPECT_EQ(ends.isCounted, baselines <= 1'000);
    for (const auto preference : {VersionPreference::Newest, VersionPreference::Oldest}) {
      const auto completed = completeSelection(*repository, at, preference);
      EXPECT_EQ(completed.has_value(), baselines > 0);
      if (completed) {
        EXPECT_EQ(repository->combine(*completed).size(), 1);
      }
    }
    run.count("open", !ends.names.empty());
  });
  run.expectPercentages({{"not minimal", 5}, {"open", 2}});
}

TEST(LooseEnds, NameWhatIsOpenAndArePinned) {
  const auto repository =
      catalogueOf("A1:B[1,9)+C[1,4) B1..8 C1..2 C3:D[1,3) D1..2 Etext E2 F1:E2+B3");
  const LooseEnds ends = findLooseEnds(*repository, selection("A1"), 100);
  EXPECT_EQ(ends.baselines, 8 * 4);
  EXPECT_EQ(describe(ends),
            "32 baselines; pin some of these:\n"
            "  B: 8 choices, 1.0.0 .. 8.0.0\n"
            "  C: 3 choices, 1.0.0 .. 3.0.0\n"
            "  D: 2 choices, 1.0.0 .. 2.0.0");
  EXPECT_FALSE(findLooseEnds(*repository, selection("A1"), 31).isCounted);
  EXPECT_EQ(findLooseEnds(*repository, selection("A1 F1"), 100).names.size(), 2);
  EXPECT_EQ(completeSelection(*repository, selection("A1"), VersionPreference::Newest),
            selection("A1 B8 C3 D2"));
  EXPECT_EQ(completeSelection(*repository, selection("A1"), VersionPreference::Oldest),
            selection("A1 B1 C1"));
  EXPECT_EQ(completeSelection(*repository, selection("F1 B2"), VersionPreference::Newest),
            std::nullopt);
}

TEST(LooseEnds, FollowLongChains) {
  CatalogueContent content;
  constexpr int length = 3'000;
  for (int i = 0; i < length; ++i) {
    const auto nameOf = [](int number) { return toUtf16("N" + std::to_string(number)); };
    for (const std::uint64_t version : {1U, 2U}) {
      std::vector<Dependency> dependencies;
      if (i + 1 < length) dependencies.emplace_back(nameOf(i + 1), between(1, version + 1));
      content.metamodels.push_back({Metamodel(nameOf(i), v(version), dependencies), std::nullopt});
    }
  }
  CatalogueRepository repository{Catalogue(content)};
  const Selection first{{u"N0", v(2)}};
  const LooseEnds ends = findLooseEnds(repository, first, 10);
  EXPECT_FALSE(ends.isCounted);
  EXPECT_EQ(ends.names.size(), length - 1);
  const auto newest = completeSelection(repository, first, VersionPreference::Newest);
  ASSERT_TRUE(newest.has_value());
  EXPECT_EQ(newest->at(u"N2999"), VersionId(v(2)));
  EXPECT_EQ(findLooseEnds(repository, {{u"N0", v(1)}}, 10).baselines, 1);
}

}  // namespace
}  // namespace test
