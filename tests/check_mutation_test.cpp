// Loading and checking must agree on which catalogues are sound.
#include <gtest/gtest.h>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_catalogue.hpp"
#include "support/catalogue_json.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using nlohmann::ordered_json;

/// A value and all values in it.
std::vector<ordered_json*> valuesIn(ordered_json& value) {
  std::vector<ordered_json*> values{&value};
  if (!value.is_structured()) return values;
  for (ordered_json& child : value) {
    for (ordered_json* inner : valuesIn(child)) values.push_back(inner);
  }
  return values;
}

/// Changes one or two places of a JSON document at random.
class Mutation {
 public:
  explicit Mutation(Random& random) : random_(random) {}

  std::string of(ordered_json document) {
    for (std::size_t count = random_.upTo(2); count > 0; --count) change(document);
    std::string text = document.dump();
    if (random_.chance(10)) repeatField(text);
    if (random_.chance(3)) text.erase(random_.below(text.size()), 1);
    return text;
  }

 private:
  void change(ordered_json& document) {
    const std::vector<ordered_json*> values = valuesIn(document);
    ordered_json& chosen = *random_.oneOf(values);
    const ordered_json other = *random_.oneOf(values);
    const std::size_t kind = random_.below(4);
    if (chosen.is_structured() && !chosen.empty() && kind < 3) {
      const auto place =
          std::next(chosen.begin(), static_cast<std::ptrdiff_t>(random_.below(chosen.size())));
      if (kind == 0) {
        chosen.erase(place);
      } else if (kind == 1) {
        *place = other;
      } else if (chosen.is_array()) {
        chosen.push_back(ordered_json(*place));
      } else {
        chosen["extra"] = other;
      }
    } else {
      chosen = kind == 3 ? other : strange();
    }
  }

  ordered_json strange() {
    static const auto values = ordered_json::parse(R"([
      null, 7, 0.5, true, "", "A", "x", "y", "1.0", "2.0.0", "9.9", [], {}, ["1.0", "3.0"],
      ["2.0", "1.0"], ["1.0", "1.0"], ["1.0", "x"], [1, "2.0"], "1.18446744073709551616.0",
      "a\u0000b", "1.0.18446744073709551615", [[[{}]]]])");
    return random_.oneOf(values);
  }

  /// Gives some object a field before its own, perhaps one that it has.
  void repeatField(std::string& text) {
    std::vector<std::size_t> objects;
    for (std::size_t at = text.find("{\""); at != std::string::npos;
         at = text.find("{\"", at + 1)) {
      objects.push_back(at + 1);
    }
    if (objects.empty()) return;
    const char* fields[] = {R"("name":"A",)", R"("hops":[],)", R"("range":"1.0",)"};
    text.insert(random_.oneOf(objects), random_.oneOf(fields));
  }

  Random& random_;
};

/// The document without one of the values in it; of one that is no JSON, nothing.
std::vector<std::string> simplerJson(const std::string& text) {
  std::vector<std::string> simpler;
  ordered_json document = ordered_json::parse(text, nullptr, false);
  for (std::size_t i = 0; i < valuesIn(document).size(); ++i) {
    for (std::size_t child = 0; child < valuesIn(document)[i]->size(); ++child) {
      ordered_json changed = document;
      ordered_json& parent = *valuesIn(changed)[i];
      if (!parent.is_structured()) continue;
      parent.erase(std::next(parent.begin(), static_cast<std::ptrdiff_t>(child)));
      simpler.push_back(changed.dump());
    }
  }
  return simpler;
}

TEST(Check, FindsAnErrorExactlyWhereLoadingRefuses) {
  TestRepository repository(
      "A1..3 Ax~1.5 Ay B1:A[1,3) B2:Ax+C[1,2) C1:A[0.1,9) C2:Ay D1:A[1,9)+B[1,9) Dz~2 D1>z B1>2 "
      "B2>1! Ax>3 C1>2");
  ordered_json document = toJson(repository);
  document["question"] = {{"from", selectionJson("A1 B1")}, {"to", selectionJson("A3 D1")}};
  RandomRun run(4000);
  const auto mutate = [&](Random& random) { return Mutation(random).of(document); };
  const auto check = [&](const std::string& text, Random&) {
    const std::vector<Finding> findings = findingsIn(text);
    try {
      std::istringstream in(text);
      readJsonCatalogue(in);
      run.count("accepted");
      EXPECT_FALSE(hasError(findings));
    } catch (const CatalogueError& error) {
      run.count("refused");
      EXPECT_TRUE(hasError(findings)) << error.what();
    }
  };
  run.ask(mutate, check, simplerJson);
  run.expectPercentages({{"refused", 20}, {"accepted", 1.5}});
}

}  // namespace
}  // namespace test
