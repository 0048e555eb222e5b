// The C interface: the answers are those of the C++ interface, whatever the catalogue comes from;
// garbage and failing callbacks end in a status and a message.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <sstream>
#include <thread>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/picture/path_plan.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"
#include "messages/messages.hpp"
#include "platform/exception.hpp"
#include "platform/text.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"
#include "tarn_evolution_catalogue.h"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using fl::i18n::ustring_to_utf8;

using Handle = std::unique_ptr<tarn_evolution_catalogue, decltype(&tarn_evolution_catalogue_free)>;
using Rows = std::unique_ptr<tarn_evolution_rows, decltype(&tarn_evolution_rows_free)>;

/// "STATUS: message" or the answer's text. Whatever C gives is released.
struct Outcome {
  tarn_evolution_status status;
  std::string text;
};

std::string taken(char* text) {
  std::string result = text == nullptr ? "" : text;
  tarn_evolution_free(text);
  return result;
}

/// A selection as C takes it.
class CSelection {
 public:
  explicit CSelection(const Selection& selection) {
    for (const auto& [name, version] : selection) {
      texts_.emplace_back(ustring_to_utf8(name), printed(version));
    }
    for (const auto& [name, version] : texts_) items_.push_back({name.c_str(), version.c_str()});
  }

  const tarn_evolution_named_version* data() const { return items_.data(); }
  size_t size() const { return items_.size(); }

 private:
  std::vector<std::pair<std::string, std::string>> texts_;
  std::vector<tarn_evolution_named_version> items_;
};

Outcome rendered(tarn_evolution_status status, tarn_evolution_steps* steps, char* message) {
  Outcome result{status, taken(message)};
  EXPECT_EQ(steps != nullptr, status == TARN_EVOLUTION_OK);
  char* text = nullptr;
  if (steps != nullptr) {
    EXPECT_EQ(tarn_evolution_steps_render(steps, TARN_EVOLUTION_JSON, &text, nullptr), 0);
    result.text = taken(text);
  }
  tarn_evolution_steps_free(steps);
  return result;
}

Outcome pathBy(tarn_evolution_catalogue* catalogue, const Selection& from, const Selection& to,
               const tarn_evolution_limits* limits = nullptr) {
  const CSelection source(from);
  const CSelection target(to);
  tarn_evolution_steps* path = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_find_path(catalogue, source.data(), source.size(), target.data(),
                               target.size(), limits, &path, &message);
  return rendered(status, path, message);
}

Outcome stepsBy(tarn_evolution_catalogue* catalogue, const Selection& at) {
  const CSelection source(at);
  tarn_evolution_steps* steps = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_find_steps(catalogue, source.data(), source.size(),
                                TARN_EVOLUTION_ANY_DIRECTION, 1000, &steps, &message);
  return rendered(status, steps, message);
}

Outcome explanationBy(tarn_evolution_catalogue* catalogue, const Selection& from,
                      const Selection& to, const tarn_evolution_limits* limits = nullptr) {
  const CSelection source(from);
  const CSelection target(to);
  char* text = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_explain(catalogue, source.data(), source.size(), target.data(), target.size(),
                             20, limits, TARN_EVOLUTION_JSON, &text, &message);
  const std::string said = taken(message);
  const std::string explained = taken(text);
  return {status, status == TARN_EVOLUTION_OK ? explained : said};
}

/// A dependency as C takes it. Refers to itself.
class CDependency {
 public:
  explicit CDependency(const Dependency& dependency) : name_(ustring_to_utf8(dependency.name)) {
    for (const VersionRange& range : piecesOf(dependency.range)) {
      if (range.isSemVerRange()) {
        const auto& [lower, upper] = range.getSemVerRange();
        texts_.push_back({printed(lower), printed(upper)});
      } else {
        texts_.push_back({printed(range), ""});
      }
    }
    for (const auto& [lower, upper] : texts_) {
      ranges_.push_back({lower.c_str(), upper.empty() ? nullptr : upper.c_str()});
    }
  }

  tarn_evolution_dependency get() const { return {name_.c_str(), ranges_.data(), ranges_.size()}; }

 private:
  std::string name_;
  std::vector<std::array<std::string, 2>> texts_;
  std::vector<tarn_evolution_range> ranges_;
};

tarn_evolution_status addRequirement(tarn_evolution_rows* rows, const Metamodel& metamodel,
                                     const PeerRequirement& required) {
  const std::string name = ustring_to_utf8(metamodel.name);
  const std::string version = printed(metamodel.version);
  const CDependency needed({required.name, required.range});
  const tarn_evolution_requirement row{name.c_str(), version.c_str(), needed.get(),
                                       required.isOptional};
  return tarn_evolution_rows_add_requirement(rows, &row, nullptr);
}

tarn_evolution_status addRow(tarn_evolution_rows* rows, const CatalogueMetamodel& row) {
  const Metamodel& metamodel = row.descriptor;
  const std::deque<CDependency> needed(metamodel.dependencies.begin(),
                                       metamodel.dependencies.end());
  std::vector<tarn_evolution_dependency> dependencies;
  for (const CDependency& each : needed) dependencies.push_back(each.get());
  for (const auto& [required, note] : row.requirements) {
    if (const auto status = addRequirement(rows, metamodel, required)) return status;
  }
  const std::string equivalent = row.equivalent ? printed(*row.equivalent) : "";
  return tarn_evolution_rows_add_metamodel(rows, ustring_to_utf8(metamodel.name).c_str(),
                                           printed(metamodel.version).c_str(),
                                           row.equivalent ? equivalent.c_str() : nullptr,
                                           dependencies.data(), dependencies.size(), nullptr);
}

tarn_evolution_status addRow(tarn_evolution_rows* rows, const Hop& hop) {
  const std::string name = ustring_to_utf8(hop.name);
  const std::string from = printed(hop.from);
  const std::string to = printed(hop.to);
  const tarn_evolution_hop row{name.c_str(), from.c_str(), to.c_str(), hop.expensive};
  return tarn_evolution_rows_add_hop(rows, &row, nullptr);
}

Handle openRows(const CatalogueContent& content) {
  const Rows rows(tarn_evolution_rows_new(), tarn_evolution_rows_free);
  for (const auto& row : content.metamodels) EXPECT_EQ(addRow(rows.get(), row), 0);
  for (const auto& row : content.hops) EXPECT_EQ(addRow(rows.get(), row), 0);
  tarn_evolution_catalogue* catalogue = nullptr;
  char* message = nullptr;
  const auto status = tarn_evolution_open_rows(rows.get(), &catalogue, &message);
  EXPECT_EQ(taken(message), "") << status;
  return {catalogue, tarn_evolution_catalogue_free};
}

/// What C asks for, as ranges.
std::vector<VersionRange> fromC(const tarn_evolution_range* ranges, size_t count) {
  std::vector<VersionRange> result;
  result.reserve(count);
  for (const auto* range = ranges; range != ranges + count; ++range) {
    result.push_back(range->upper == nullptr
                         ? VersionRange::singleVersion(parseVersion(range->lower))
                         : parseRange(range->lower, range->upper));
  }
  return result;
}

/// As its repository lists it: with requirements for the dependencies that lead back.
CatalogueContent listed(const CatalogueContent& content) {
  CatalogueRepository repository{Catalogue(content)};
  CatalogueContent result{.metamodels = {}, .hops = content.hops};
  for (const auto& name : repository.listNames()) {
    for (auto& row : repository.listMetamodels(name)) result.metamodels.push_back(std::move(row));
  }
  return result;
}

/// Answers from content, all or no more than was asked for; a call can fail, in one of several
/// ways.
class Host {
 public:
  explicit Host(const CatalogueContent& content) : content_(listed(content)) {}

  Handle open() {
    tarn_evolution_callbacks callbacks{
        sizeof callbacks,
        this,
        [](void* data, const char* name, const tarn_evolution_range* ranges, size_t count,
           tarn_evolution_rows* rows) {
          EXPECT_EQ(ranges == nullptr, count == 0);
          const auto& host = *static_cast<Host*>(data);
          const auto asked = fromC(ranges, count);
          return static_cast<Host*>(data)->list(
              name, host.content_.metamodels, rows, [&](const CatalogueMetamodel& row) {
                return !host.isExact || asked.empty() || liesInAny(asked, row);
              });
        },
        [](void* data, const char* name, const char* from, tarn_evolution_rows* rows) {
          const auto& host = *static_cast<Host*>(data);
          return static_cast<Host*>(data)->list(
              name, host.content_.hops, rows, [&](const Hop& hop) {
                return !host.isExact || from == nullptr || hop.from == parseVersion(from);
              });
        },
        [](void* data, void (*add)(void*, const char*), void* names) {
          return static_cast<Host*>(data)->listNames(add, names);
        },
        [](void* data) { ++static_cast<Host*>(data)->releases; },
        [](void* data, const char* name, const char* version, tarn_evolution_rows* rows) {
          EXPECT_TRUE(static_cast<Host*>(data)->tellsRequirements);
          return static_cast<Host*>(data)->listRequirements(name, version, rows);
        }};
    if (!tellsRequirements) callbacks.size = offsetof(tarn_evolution_callbacks, find_requirements);
    tarn_evolution_catalogue* catalogue = nullptr;
    EXPECT_EQ(tarn_evolution_open_callbacks(&callbacks, &catalogue, nullptr), 0);
    return {catalogue, tarn_evolution_catalogue_free};
  }

  bool isExact = false;
  bool tellsRequirements = true;  ///< when asked for them, or only with the metamodels
  std::atomic<std::size_t> calls = 0;
  std::size_t failing = 0;  ///< the number of the call to fail, from 1; 0: none
  int manner = 0;           ///< how: returns 7, adds garbage, adds another name, throws
  int releases = 0;

 private:
  int32_t fail(tarn_evolution_rows* rows) const {
    const tarn_evolution_hop garbage{"A", "1.0.0", "", 0};
    if (rows != nullptr && manner == 1) tarn_evolution_rows_add_hop(rows, &garbage, nullptr);
    if (manner == 2) throw std::runtime_error("thrown by a host in C++");
    return manner == 1 && rows != nullptr ? 0 : 7;
  }

  static bool liesInAny(const std::vector<VersionRange>& ranges, const CatalogueMetamodel& row) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const VersionRange& range) {
      return range.includes(row.descriptor.version) ||
             (row.equivalent && range.includes(*row.equivalent));
    });
  }

  template <class Row, class IsAsked>
  int32_t list(const char* name, const std::vector<Row>& all, tarn_evolution_rows* rows,
               const IsAsked& isAsked) {
    if (++calls == failing) return fail(rows);
    for (const Row& row : all) {
      if (ustring_to_utf8(nameOf(row)) != name || !isAsked(row)) continue;
      if (addRow(rows, row) != 0) return 1;
    }
    return 0;
  }

  int32_t listRequirements(const char* name, const char* version, tarn_evolution_rows* rows) {
    return list(name, content_.metamodels, rows, [&](const CatalogueMetamodel& row) {
      return !isExact || printed(row.descriptor.version) == version;
    });
  }

  int32_t listNames(void (*add)(void*, const char*), void* names) {
    if (++calls == failing) return fail(nullptr);
    for (const auto& row : content_.metamodels) {
      add(names, ustring_to_utf8(row.descriptor.name).c_str());
    }
    return 0;
  }

  static const std::u16string& nameOf(const CatalogueMetamodel& row) { return row.descriptor.name; }
  static const std::u16string& nameOf(const Hop& hop) { return hop.name; }

  CatalogueContent content_;
};

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
      : from(selection(text.from)), to(selection(text.to)) {
    TestRepository repository(text.catalogue);
    content = contentOf(repository);
  }

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
  const tarn_evolution_limits small{1, -1, 0, nullptr, nullptr, nullptr};
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
