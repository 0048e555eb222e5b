// Loading and checking must agree on which catalogues are sound.
#include <gtest/gtest.h>

#include <random>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_catalogue.hpp"
#include "support/catalogue_json.hpp"
#include "support/random_cases.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using nlohmann::ordered_json;

/// Changes one or two places of a JSON document at random.
class Mutation {
 public:
  explicit Mutation(unsigned seed) : random_(seed) {}

  std::string of(ordered_json document) {
    for (std::size_t count = 1 + upTo(2); count > 0; --count) change(document);
    std::string text = document.dump();
    if (upTo(10) == 0) repeatField(text);
    if (upTo(40) == 0) text.erase(upTo(text.size()), 1);
    return text;
  }

 private:
  std::size_t upTo(std::size_t end) { return random_() % end; }

  void collect(ordered_json& value, std::vector<ordered_json*>& values) const {
    values.push_back(&value);
    if (!value.is_structured()) return;
    for (ordered_json& child : value) collect(child, values);
  }

  void change(ordered_json& document) {
    std::vector<ordered_json*> values;
    collect(document, values);
    ordered_json& chosen = *values[upTo(values.size())];
    const ordered_json other = *values[upTo(values.size())];
    const std::size_t kind = upTo(4);
    if (chosen.is_structured() && !chosen.empty() && kind < 3) {
      const auto place =
          std::next(chosen.begin(), static_cast<std::ptrdiff_t>(upTo(chosen.size())));
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
    static const ordered_json values[] = {nullptr,
                                          7,
                                          0.5,
                                          true,
                                          "",
                                          "A",
                                          "x",
                                          "y",
                                          "1.0",
                                          "2.0.0",
                                          "9.9",
                                          ordered_json::array(),
                                          ordered_json::object(),
                                          {"1.0", "3.0"},
                                          {"2.0", "1.0"},
                                          {"1.0", "1.0"},
                                          {"1.0", "x"},
                                          {1, "2.0"},
                                          "1.18446744073709551616.0",
                                          std::string("a\0b", 3),
                                          "1.0.18446744073709551615",
                                          ordered_json::array({ordered_json::array(
                                              {ordered_json::array({ordered_json::object()})})})};
    return values[upTo(std::size(values))];
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
    text.insert(objects[upTo(objects.size())], fields[upTo(std::size(fields))]);
  }

  std::mt19937 random_;
};

TEST(Check, FindsAnErrorExactlyWhereLoadingRefuses) {
  TestRepository repository(
      "A1..3 Ax~1.5 Ay B1:A[1,3) B2:Ax+C[1,2) C1:A[0.1,9) C2:Ay D1:A[1,9)+B[1,9) Dz~2 D1>z B1>2 "
      "B2>1! Ax>3 C1>2");
  ordered_json document = toJson(repository);
  document["question"] = {{"from", selectionJson("A1 B1")}, {"to", selectionJson("A3 D1")}};
  unsigned refused = 0;
  unsigned accepted = 0;
  const unsigned mutations = randomCases(4000);
  for (unsigned seed = 0; seed < mutations; ++seed) {
    const std::string text = Mutation(seed).of(document);
    const std::vector<Finding> findings = findingsIn(text);
    try {
      std::istringstream in(text);
      readJsonCatalogue(in);
      ++accepted;
      EXPECT_FALSE(hasError(findings)) << text;
    } catch (const CatalogueError& error) {
      ++refused;
      EXPECT_TRUE(hasError(findings)) << text << error.what();
    }
  }
  EXPECT_GT(refused, mutations / 4);
  EXPECT_GT(accepted, mutations / 20);
}

}  // namespace
}  // namespace test
