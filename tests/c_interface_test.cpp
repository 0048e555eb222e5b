// The C interface: garbage ends in a status and a message, limits end questions, and accessors tell
// what the JSON tells.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <set>

#include "catalogue/catalogue.hpp"
#include "catalogue/json_catalogue.hpp"
#include "support/c_questions.hpp"
#include "support/test_question.hpp"
#include "tarn_evolution_catalogue.h"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

const CatalogueContent shapes{
    .metamodels = {{{u"shape", SemVer{1, 0, 0}, {}}, {}}, {{u"shape", SemVer{2, 0, 0}, {}}, {}}},
    .hops = {{u"shape", SemVer{1, 0, 0}, SemVer{2, 0, 0}, true}},
    .question = {}};

TEST(CInterface, GarbageIsNamed) {
  const Handle catalogue = openRows(shapes);
  const Rows rows(tarn_evolution_rows_new(), tarn_evolution_rows_free);
  const tarn_evolution_named_version good[] = {{"shape", "1.0.0"}, {"shape", "2.0.0"}};
  const tarn_evolution_named_version bad[] = {{"sh\xC3", "1.0.0"}, {"shape", nullptr}, {"", "1"}};
  const tarn_evolution_range ranges[] = {
      {"1.0.0", nullptr}, {"2.0.0", "1.0.0"}, {"spring", "3.0.0"}, {nullptr, nullptr}};
  const tarn_evolution_dependency dependencies[] = {
      {"shape", ranges, 2}, {"shape", ranges + 2, 1}, {nullptr, ranges, 1},
      {"shape", ranges, 0}, {"shape", nullptr, 1},    {"shape", ranges + 3, 1}};
  const tarn_evolution_hop hop{"shape", "1.0.0", "any of 1.0.0", 0};
  const tarn_evolution_limits small{1, -1, 0, nullptr, nullptr, nullptr, nullptr};
  tarn_evolution_callbacks none{};
  none.size = sizeof none;
  const tarn_evolution_requirement required[] = {{"shape", "1.0.0", dependencies[2], 0},
                                                 {"shape", nullptr, {"shape", ranges, 1}, 0},
                                                 {"shape", "3.0.0", {"shape", ranges, 1}, 0}};
  tarn_evolution_steps* steps = nullptr;
  tarn_evolution_catalogue* opened = nullptr;
  char* text = nullptr;
  char* said = nullptr;
  const auto ask = [&](const tarn_evolution_named_version* from, size_t count,
                       const tarn_evolution_limits* limits = nullptr) {
    return tarn_evolution_find_path(catalogue.get(), from, count, good + 1, 1, limits, &steps,
                                    &said);
  };
  const auto add = [&](const char* version, const char* semver, size_t dependency) {
    const bool has = dependency < std::size(dependencies);
    return tarn_evolution_rows_add_metamodel(rows.get(), "shape", version, semver,
                                             has ? &dependencies[dependency] : nullptr, has, &said);
  };
  const auto openWith = [&](const tarn_evolution_requirement& requirement) {
    const Rows astray(tarn_evolution_rows_new(), tarn_evolution_rows_free);
    EXPECT_EQ(addRow(astray.get(), shapes.metamodels[0]), 0);
    EXPECT_EQ(tarn_evolution_rows_add_requirement(astray.get(), &requirement, nullptr), 0);
    return tarn_evolution_open_rows(astray.get(), &opened, &said);
  };
  constexpr auto invalid = TARN_EVOLUTION_INVALID_ARGUMENT;
  const struct {
    std::function<tarn_evolution_status()> call;
    tarn_evolution_status status;
    const char* message;
  } cases[] = {
      {[&] { return ask(bad, 1); }, invalid, "from[0].name: the text is not UTF-8"},
      {[&] { return ask(bad, 2); }, invalid, "from[0].name: the text is not UTF-8"},
      {[&] { return ask(bad + 1, 1); }, invalid, "from[0].version: is NULL"},
      {[&] { return ask(bad + 2, 1); }, invalid, "from[0].name: must not be empty"},
      {[&] { return ask(good, 2); }, invalid, "from[1].name: \"shape\" stands twice"},
      {[&] { return ask(nullptr, 1); }, invalid, "from: is NULL"},
      {[&] { return ask(good, 1, &small); }, invalid, "limits.size: is 1, which is less than 48"},
      {[&] { return add("1.0.0", nullptr, 0); }, invalid,
       "dependencies[0].ranges[1]: the range [2.0.0, 1.0.0) is reversed"},
      {[&] { return add("1.0.0", nullptr, 1); }, invalid,
       "dependencies[0].ranges[0]: \"spring\" is not a semantic version"},
      {[&] { return add("1.0.0", nullptr, 2); }, invalid, "dependencies[0].name: is NULL"},
      {[&] { return add("1.0.0", nullptr, 3); }, invalid, "dependencies[0].ranges: there is none"},
      {[&] { return add("1.0.0", nullptr, 4); }, invalid, "dependencies[0].ranges: is NULL"},
      {[&] { return add("1.0.0", nullptr, 5); }, invalid,
       "dependencies[0].ranges[0].lower: is NULL"},
      {[&] { return add("1.0.0", "1.0.0", 9); }, invalid,
       "semver: the version 1.0.0 is one already"},
      {[&] { return add("spring", "autumn", 9); }, invalid,
       "semver: \"autumn\" is not a semantic version"},
      {[&] { return tarn_evolution_rows_add_hop(rows.get(), &hop, &said); }, invalid,
       "hop.to: \"any of 1.0.0\" begins as no version may"},
      {[&] { return tarn_evolution_rows_add_hop(nullptr, &hop, &said); }, invalid, "rows: is NULL"},
      {[&] { return tarn_evolution_rows_add_requirement(rows.get(), required, &said); }, invalid,
       "requirement.needed.name: is NULL"},
      {[&] { return tarn_evolution_rows_add_requirement(rows.get(), required + 1, &said); },
       invalid, "requirement.version: is NULL"},
      {[&] { return openWith(required[2]); }, TARN_EVOLUTION_BAD_CATALOGUE,
       "/requirements/0: there is no version 3.0.0 of metamodel \"shape\""},
      {[&] { return tarn_evolution_open_callbacks(&none, &opened, &said); }, invalid,
       "callbacks.find_metamodels: is NULL"},
      {[&] { return tarn_evolution_open(nullptr, &opened, &said); }, invalid, "file: is NULL"},
      {[&] { return tarn_evolution_open("no/such.json", &opened, &said); },
       TARN_EVOLUTION_BAD_CATALOGUE, nullptr},
      {[&] { return tarn_evolution_find_path(nullptr, good, 1, good, 1, nullptr, &steps, &said); },
       invalid, "catalogue: is NULL"},
      {[&] {
         return tarn_evolution_find_path(catalogue.get(), good, 1, good, 1, nullptr, nullptr,
                                         &said);
       },
       invalid, "path: is NULL"},
      {[&] {
         return tarn_evolution_find_direction(catalogue.get(), good, 1, good, 1, nullptr, nullptr,
                                              &said);
       },
       invalid, "direction: is NULL"},
      {[&] { return tarn_evolution_find_steps(catalogue.get(), good, 1, 5, 1, &steps, &said); },
       invalid, "direction: 5 is none"},
      {[&] { return tarn_evolution_find_steps(catalogue.get(), good, 1, 2, 1, &steps, &said); },
       TARN_EVOLUTION_TOO_MANY_COMBINATIONS, nullptr},
      {[&] {
         return tarn_evolution_explain(catalogue.get(), good, 1, good, 1, 1, nullptr,
                                       TARN_EVOLUTION_SVG, &text, &said);
       },
       invalid, "format: 2 is none that shows explanations"},
      {[&] { return tarn_evolution_check(CATALOGUE_FILE, 3, &text, &said); }, invalid,
       "least: 3 is no severity"},
      {[&] { return tarn_evolution_check("no/such.json", 0, &text, &said); },
       TARN_EVOLUTION_BAD_CATALOGUE, nullptr},
  };
  for (const auto& each : cases) {
    said = nullptr;
    EXPECT_EQ(each.call(), each.status);
    const std::string message = taken(said);
    EXPECT_NE(message, "");
    if (each.message != nullptr) {
      EXPECT_EQ(message, each.message);
    }
    EXPECT_TRUE(steps == nullptr && opened == nullptr && text == nullptr) << message;
  }
  // Rows that could not be added are not there: what is left is nothing.
  EXPECT_EQ(tarn_evolution_open_rows(rows.get(), &opened, nullptr), TARN_EVOLUTION_OK);
  tarn_evolution_catalogue_free(opened);
  for (const auto status : {0, 1, -1, -11}) {
    EXPECT_STRNE(tarn_evolution_status_name(status), "unknown status");
  }
  EXPECT_STREQ(tarn_evolution_status_name(2), "unknown status");
}

TEST(CInterface, StepsAreThoseOfTheJson) {
  const Handle catalogue = openRows(shapes);
  const tarn_evolution_named_version from{"shape", "1.0.0"};
  const tarn_evolution_named_version to{"shape", "2.0.0"};
  tarn_evolution_steps* path = nullptr;
  ASSERT_EQ(tarn_evolution_find_path(catalogue.get(), &from, 1, &to, 1, nullptr, &path, nullptr),
            0);
  size_t count = 9;
  const tarn_evolution_hop* hop = tarn_evolution_step_hops(path, 0, &count);
  ASSERT_EQ(count, 1u);
  EXPECT_EQ(std::string(hop->name) + hop->from + hop->to, "shape1.0.02.0.0");
  EXPECT_EQ(hop->expensive, 1);
  EXPECT_EQ(tarn_evolution_steps_weight(path), 1'000'000'000u);
  EXPECT_EQ(tarn_evolution_step_weight(path, 0), 1'000'000'000u);
  EXPECT_EQ(tarn_evolution_step_count(path), 1u);
  EXPECT_EQ(tarn_evolution_step_brought_in(path, 0, &count), nullptr);
  EXPECT_EQ(count, 0u);
  for (const auto* steps : {path, static_cast<tarn_evolution_steps*>(nullptr)}) {
    EXPECT_EQ(tarn_evolution_step_hops(steps, 1, &count), nullptr);
    EXPECT_EQ(tarn_evolution_step_weight(steps, 1), 0u);
  }
  for (tarn_evolution_format format = -1; format <= 6; ++format) {
    char* text = nullptr;
    const auto status = tarn_evolution_steps_render(path, format, &text, nullptr);
    EXPECT_EQ(status == TARN_EVOLUTION_OK, 0 <= format && format <= 5);
    EXPECT_EQ(taken(text).empty(), status != TARN_EVOLUTION_OK);
  }
  tarn_evolution_steps_free(path);
}

/// Fourteen names that can only move together, which trying every combination does not settle.
CatalogueContent tangle() {
  CatalogueContent content;
  for (char16_t letter = u'A'; letter < u'A' + 14; ++letter) {
    const std::u16string name(1, letter);
    for (std::uint64_t i = 1; i <= 8; ++i) {
      std::vector<Dependency> dependencies;
      const std::u16string before(1, static_cast<char16_t>(letter - 1));
      if (letter > u'A') dependencies.emplace_back(before, between(i, i + 1));
      content.metamodels.push_back({{name, v(i), dependencies}, {}});
      if (i > 1) content.hops.emplace_back(name, v(i - 1), v(i), false);
    }
  }
  return content;
}

TEST(CInterface, LimitsEndQuestions) {
  const Handle catalogue = openRows(tangle());
  Selection from;
  Selection to;
  for (char16_t letter = u'A'; letter < u'A' + 14; ++letter) {
    from[std::u16string(1, letter)] = v(1);
    to[std::u16string(1, letter)] = v(8);
  }
  struct Calls {
    int count = 0;
    int stopAt = 0;
  } calls;
  tarn_evolution_limits limits = TARN_EVOLUTION_NO_LIMITS;
  limits.data = &calls;
  limits.on_progress = [](void* data, const tarn_evolution_progress* progress) -> int32_t {
    auto& told = *static_cast<Calls*>(data);
    EXPECT_EQ(progress->size, sizeof *progress);
    return ++told.count == told.stopAt;
  };
  const std::function<Outcome(const tarn_evolution_limits&)> questions[] = {
      [&](const auto& within) { return pathBy(catalogue.get(), from, to, &within); },
      [&](const auto& within) { return explanationBy(catalogue.get(), from, to, &within); }};
  for (const auto& ask : questions) {
    tarn_evolution_forget_paths(catalogue.get());
    calls = {.count = 0, .stopAt = 1};
    EXPECT_EQ(ask(limits).status, TARN_EVOLUTION_STOPPED);
    EXPECT_EQ(calls.count, 1);
    calls = {};
    tarn_evolution_limits none = limits;
    none.timeout_ms = 0;
    EXPECT_EQ(ask(none).status, TARN_EVOLUTION_TIMED_OUT);
    tarn_evolution_stop* const stop = tarn_evolution_stop_new();
    none = limits;
    none.stop = stop;
    tarn_evolution_stop_request(stop);
    EXPECT_EQ(ask(none).status, TARN_EVOLUTION_STOPPED);
    tarn_evolution_stop_free(stop);
  }
  limits.timeout_ms = INT64_MAX;  // beyond what a clock can tell
  const Handle easy = openRows(shapes);
  EXPECT_EQ(pathBy(easy.get(), {{u"shape", v(1)}}, {{u"shape", v(2)}}, &limits).status, 0);
}

/// Names that each need near versions of earlier ones, which the search that learns is for.
CatalogueContent learnable(std::size_t names, const Selection& from) {
  std::mt19937 random(7);  // the same everywhere
  CatalogueContent content;
  std::vector<std::u16string> known;
  for (const auto& [name, version] : std::map(from.begin(), from.end())) known.push_back(name);
  for (std::size_t place = 0; place < names; ++place) {
    const std::size_t needed = place == 0 ? 0 : random() % place;
    for (std::uint64_t i = 1; i <= 8; ++i) {
      std::vector<Dependency> dependencies;
      for (const std::size_t other : std::set<std::size_t>{needed, place / 2, place / 3}) {
        if (other >= place) continue;
        dependencies.emplace_back(known[other], between(i > 1 ? i - 1 : 1, i + 2));
      }
      content.metamodels.push_back({{known[place], v(i), dependencies}, {}});
      if (i < 8) content.hops.emplace_back(known[place], v(i), v(i + 1), random() % 3 == 0);
      if (i < 7) content.hops.emplace_back(known[place], v(i), v(i + 2), random() % 3 == 0);
    }
  }
  return content;
}

TEST(CInterface, BetterPathsAreTold) {
  constexpr std::size_t names = 40;
  Selection from;
  Selection to;
  for (std::size_t i = 0; i < names; ++i) {
    const std::u16string name{u'N', static_cast<char16_t>(u'0' + i)};
    from[name] = v(1);
    to[name] = v(8);
  }
  const Handle catalogue = openRows(learnable(names, from));
  struct Told {
    int count = 0;
    int stopAt = 0;
    std::uint64_t lightest = UINT64_MAX;
  } told;
  tarn_evolution_limits limits = TARN_EVOLUTION_NO_LIMITS;
  limits.data = &told;
  limits.on_better_path = [](void* data, const tarn_evolution_steps* path) -> int32_t {
    Told& known = *static_cast<Told*>(data);
    EXPECT_LT(tarn_evolution_steps_weight(path), known.lightest);
    EXPECT_GT(tarn_evolution_step_count(path), 0U);
    known.lightest = tarn_evolution_steps_weight(path);
    return ++known.count == known.stopAt ? 1 : 0;
  };
  const auto weightOf = [](const Outcome& outcome) {
    EXPECT_EQ(outcome.status, TARN_EVOLUTION_OK) << outcome.text;
    const std::size_t place = outcome.text.find("\"weight\": ");
    return std::stoull(outcome.text.substr(place + std::strlen("\"weight\": ")));
  };
  const std::uint64_t least = weightOf(pathBy(catalogue.get(), from, to, &limits));
  EXPECT_GT(told.count, 0);
  EXPECT_GE(told.lightest, least);
  tarn_evolution_forget_paths(catalogue.get());
  told = {.stopAt = 1};
  EXPECT_EQ(pathBy(catalogue.get(), from, to, &limits).status, TARN_EVOLUTION_STOPPED);
  EXPECT_EQ(told.count, 1);
  // One who was compiled with a former header.
  told = {};
  limits.size = offsetof(tarn_evolution_limits, on_better_path);
  EXPECT_EQ(weightOf(pathBy(catalogue.get(), from, to, &limits)), least);
  EXPECT_EQ(told.count, 0);
}

TEST(CInterface, DirectionsAreThoseOfCxx) {
  const Handle catalogue = openRows(tangle());
  const tarn_evolution_named_version ends[] = {{"B", "2.0.0"}, {"B", "3.0.0"}, {"A", "9.0.0"}};
  const auto ask = [&](const auto& from, const auto& to, int32_t& direction) {
    return tarn_evolution_find_direction(catalogue.get(), &from, 1, &to, 1, nullptr, &direction,
                                         nullptr);
  };
  int32_t direction = -1;
  EXPECT_EQ(ask(ends[0], ends[1], direction), TARN_EVOLUTION_OK);
  EXPECT_EQ(direction, TARN_EVOLUTION_FORWARD);
  EXPECT_EQ(ask(ends[1], ends[0], direction), TARN_EVOLUTION_OK);
  EXPECT_EQ(direction, TARN_EVOLUTION_BACKWARD);
  EXPECT_EQ(ask(ends[1], ends[1], direction), TARN_EVOLUTION_OK);
  EXPECT_EQ(direction, TARN_EVOLUTION_ANY_DIRECTION);
  EXPECT_EQ(ask(ends[1], ends[2], direction), TARN_EVOLUTION_UNKNOWN_VERSION);
  const tarn_evolution_named_version apart[] = {{"A", "1.0.0"}, {"B", "3.0.0"}};
  EXPECT_EQ(tarn_evolution_find_direction(catalogue.get(), apart, 2, ends, 1, nullptr, &direction,
                                          nullptr),
            TARN_EVOLUTION_NO_PATH);
}

TEST(CInterface, FilesAreOpenedAndChecked) {
  tarn_evolution_catalogue* catalogue = nullptr;
  ASSERT_EQ(tarn_evolution_open(CATALOGUE_FILE, &catalogue, nullptr), 0);
  const Handle owner(catalogue, tarn_evolution_catalogue_free);
  const Question question =
      readJsonCatalogue(std::filesystem::path(CATALOGUE_FILE)).question().value();
  const Outcome outcome = pathBy(catalogue, question.from, question.to);
  EXPECT_EQ(outcome.status, TARN_EVOLUTION_OK);
  EXPECT_NE(outcome.text.find("\"weight\": 27,"), std::string::npos);
  char* findings = nullptr;
  ASSERT_EQ(tarn_evolution_check(CATALOGUE_FILE, TARN_EVOLUTION_ERROR, &findings, nullptr), 0);
  const std::string text = taken(findings);
  EXPECT_NE(text.find("\"errors\": 0,"), std::string::npos);
  EXPECT_NE(text.find("\"findings\": []"), std::string::npos);
}

}  // namespace
}  // namespace test
