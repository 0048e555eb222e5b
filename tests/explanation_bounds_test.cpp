// Explanations of what is too much to link, within limits, and of few questions.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <sstream>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "support/explained_case.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using namespace std::string_literals;

/// As text, but for remedies.
std::string toldOf(const std::string& text) {
  ExplainedCase asked{QuestionText(text)};
  Explanation explanation = explain(*asked.repository, asked.question);
  if (auto* side = std::get_if<InconsistentSelection>(&explanation.reason)) side->remedies.clear();
  std::ostringstream out;
  const StepWeights weights = [&](const auto& hops) { return asked.repository->getWeight(hops); };
  writeExplanationText(explanation, weights, out);
  return out.str();
}

/// Z has 15,625 linked metamodels, or just one: the same is told.
TEST(Explanation, TellsTheSameOfWhatHasTooManyVariantsToLink) {
  std::string many;
  for (const char* name : {"A", "B", "C", "D", "E", "F"}) {
    for (int version = 1; version <= 5; ++version) many += name + std::to_string(version) + " ";
  }
  many += "P1 P2:Q[2,3) P3 Q1 Q2 R1:P[1,2) R2:P[3,4) A1>2 A3>1 B1>2 P1>2 P2>3 Q1>2 R1>2 A2>3 ";
  const std::string all = "A[1,6)+B[1,6)+C[1,6)+D[1,6)+E[1,6)+F[1,6) ";
  const std::string from = "| A1 B1 C1 D1 E1 F1 P1 Q1 R1 Z1 ";
  for (const std::string& ends :
       {from + "| A1 B2 C1 D1 E1 F1 P3 Q2 R2 Z1 |", from + "| A2 P3 R2 |",
        from + "| A5 B2 C1 D1 E1 F1 P1 Q1 R1 Z1 |", from + "| C5 D4 P2 Z1 |", from + "| P2 Q1 |",
        from + "| A1 P2 Q1 R1 Z1 |", from + "| A2 R2 P2 Q2 |",
        "| A1 B1 C1 D1 E1 F1 P2 Q1 Z1 | P3 |"s}) {  // from what cannot stand together
    EXPECT_EQ(toldOf(many + "Z1:" + all + ends), toldOf(many + "Z1 " + ends)) << ends;
  }
}

/// Wherever a limit is reached, what would take all memory to link is not linked instead.
TEST(Explanation, OfWhatCannotBeLinkedAtAllObeysLimits) {
  std::string catalogue = "P1 P2 Z1:A[1,10)";
  std::string from = " | P1 Z1 A1";
  for (const char name : {'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L'}) {
    catalogue.append("+").append(1, name).append("[1,10)");
    from.append(" ").append(1, name).append("1");
  }
  for (const char name : std::string("ABCDEFGHIJKL")) {
    for (int version = 1; version < 10; ++version) {
      catalogue.append(" ").append(1, name).append(std::to_string(version));
    }
  }
  ExplainedCase asked{QuestionText(catalogue + from + " | P2 |")};
  for (int fifths = 0; fifths < 100; ++fifths) {
    SearchLimits limits;
    limits.deadline = std::chrono::steady_clock::now() + fifths * std::chrono::microseconds(200);
    try {
      const auto explanation = explain(*asked.repository, asked.question, 20, limits);
      EXPECT_FALSE(std::holds_alternative<PathExists>(explanation.reason));
    } catch (const SearchStopped&) {  // before it was known that there is no path
    }
  }
}

/// Such a question beside another name, which is in the target and comes with the source or on the
/// way. It links nothing, or has 15,625 linked metamodels, none of which is in anybody's way.
std::pair<std::string, std::string> withAndWithoutVariants(const std::string& text,
                                                           Random& random) {
  std::string letters;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (text.find(letter) == std::string::npos) letters += letter;
  }
  const std::string brought(1, letters[0]);
  const std::string bringing(1, letters[1]);
  std::string others =
      " " + bringing + "1 " + bringing + "2:" + brought + "[1,2) " + bringing + "1>2";
  std::string needs;
  for (const char letter : letters.substr(2, 6)) {
    needs += std::string(needs.empty() ? ":" : "+") + letter + "[1,6)";
    for (char version = '1'; version < '6'; ++version) others += {' ', letter, version};
  }
  const auto from = text.find(" |");
  const auto to = text.find(" |", from + 2);
  const auto rest = text.find(" |", to + 2);
  const std::string sides = text.substr(from, to - from) + " " +
                            (random.chance(60) ? bringing : brought) + "1" +
                            text.substr(to, rest - to) + " " + brought + "1" + text.substr(rest);
  const std::string catalogue = text.substr(0, from) + others + " " + brought + "1";
  return {catalogue + sides, catalogue + needs + sides};
}

/// A large question is answered though it has hops to what cannot be linked.
bool hasPath(const Explanation& explanation) {
  return std::holds_alternative<PathExists>(explanation.reason) ||
         std::holds_alternative<PathBesideUnlinkable>(explanation.reason);
}

std::vector<std::u16string> missingIn(const Explanation& explanation) {
  std::vector<std::u16string> names;
  if (const auto* missing = std::get_if<MissingChains>(&explanation.reason)) {
    for (const MissingChain& chain : missing->chains) names.push_back(chain.target.name);
  }
  return names;
}

/// What is not linked is told less of, and nothing that is wrong. Some questions have to be linked
/// to be answered at all, which takes too long.
TEST(Explanation, OfTooManyVariantsIsPartOfWhatLinkingTells) {
  RandomRun run(30);
  run.ask(questionableCase, [](const std::string& text, Random& random) {
    const auto [few, many] = withAndWithoutVariants(text, random);
    SCOPED_TRACE(many);
    ExplainedCase asked{QuestionText(few)};
    ExplainedCase askedOfMany{QuestionText(many)};
    const Explanation whole = explain(*asked.repository, asked.question);
    SearchLimits limits;
    limits.deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    Explanation part;
    try {
      part = explain(*askedOfMany.repository, askedOfMany.question, explanationBudget, limits);
    } catch (const SearchStopped&) {
      return;
    }
    EXPECT_EQ(hasPath(whole), hasPath(part));
    const auto* const clash = std::get_if<InconsistentSelection>(&part.reason);
    const auto* const known = std::get_if<InconsistentSelection>(&whole.reason);
    EXPECT_TRUE(clash == nullptr || (known != nullptr && known->side == clash->side));
    const auto missing = missingIn(part);
    const auto missingInAll = missingIn(whole);
    EXPECT_TRUE(missingInAll.empty() || std::includes(missingInAll.begin(), missingInAll.end(),
                                                      missing.begin(), missing.end()));
    if (part.nearest && whole.nearest && whole.nearest->isProven) {
      EXPECT_LE(part.nearest->arrived.size(), whole.nearest->arrived.size());
    }
  });
}

/// However few questions may be asked, no more are, and what is said to be near is a source or
/// where a path ends.
TEST(Explanation, OfFewQuestionsIsOfThisCatalogue) {
  RandomRun run(3000);
  run.ask(questionableCase, [](const std::string& text, Random& random) {
    ExplainedCase asked{QuestionText(text)};
    const std::size_t budget = random.below(24);
    const Explanation explanation = explain(*asked.repository, asked.question, budget);
    EXPECT_LE(explanation.questions, budget + 2);
    if (!explanation.nearest) return;
    const auto& path = explanation.nearest->path;
    const auto isThis = [nearest = describe(explanation.nearest->baseline)](
                            const VersionBaseline& other) { return describe(other) == nearest; };
    const auto sources = asked.repository->combine(asked.question.from);
    EXPECT_TRUE(path.empty() ? std::any_of(sources.begin(), sources.end(), isThis)
                             : isThis(path.back().to));
  });
}

}  // namespace
}  // namespace test
