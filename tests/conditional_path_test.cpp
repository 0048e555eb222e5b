// Paths under conditions, held against every path that the steps of the path finder make.
#include "catalogue/conditions/conditional_path.hpp"

#include <algorithm>
#include <queue>
#include <stop_token>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "support/items.hpp"
#include "support/legal_path.hpp"
#include "support/random_run.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"

namespace test::conditional_path {
namespace {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::SearchLimits;
using tarn::evolution::pathfinder::SearchStopped;

using Entry = std::pair<std::u16string, VersionId>;
using Weight = std::optional<std::uint64_t>;

/// "CATALOGUE | FROM | GOALS | CONDITIONS | NEEDS": of goals, "A2/3" is either version, "A3>2>1"
/// the first of these that can be reached; of conditions, "-A2" avoids, "A" holds, "A2" keeps,
/// "+A2" passes, "*" asks in any direction; of needs, "A1B23" is one that A1 has of B [2, 3) if B
/// is there.
struct ConditionalCase {
  explicit ConditionalCase(const QuestionText& text)
      : catalogue(text.catalogue), needs(itemsIn(text.beside)), from(selection(text.from)) {
    for (const std::string& item : itemsIn(text.to)) addGoal(item);
    conditions.direction = VersionRepository::Forward;
    for (const std::string& item : itemsIn(text.direction)) addCondition(item);
  }

  static Entry entry(const std::string& item) {
    return {parseName(item.substr(0, 1)), version(item.substr(1))};
  }

  void addGoal(const std::string& item) {
    PathGoal goal{parseName(item.substr(0, 1)), {}, item.find('>') != item.npos};
    for (const char digit : item.substr(1)) {
      if (digit >= '0' && digit <= '9') goal.versions.push_back(version(std::string(1, digit)));
    }
    goals.push_back(goal);
  }

  void addCondition(const std::string& item) {
    if (item == "*") {
      conditions.direction = VersionRepository::Unknown;
    } else if (item[0] == '-') {
      conditions.avoided[entry(item.substr(1)).first].push_back(entry(item.substr(1)).second);
    } else if (item[0] == '+') {
      conditions.via.push_back(entry(item.substr(1)));
    } else if (item.size() == 1) {
      conditions.held.insert(parseName(item));
    } else {
      conditions.kept.insert_or_assign(entry(item).first, entry(item).second);
    }
  }

  /// The catalogue with the needs.
  CatalogueContent content() const {
    CatalogueContent result = contentOf(TestRepository(catalogue));
    for (const std::string& need : needs) {
      const auto [name, own] = entry(need.substr(0, 2));
      const auto digit = [&](std::size_t place) { return std::stoull(need.substr(place, 1)); };
      const VersionRange range = between(digit(3), digit(4));
      for (CatalogueMetamodel& each : result.metamodels) {
        if (each.descriptor.name != name || each.descriptor.version != own) continue;
        each.requirements.push_back({{parseName(need.substr(2, 1)), range, true}});
      }
    }
    return result;
  }

  std::string catalogue;
  std::vector<std::string> needs;
  Selection from;
  std::vector<PathGoal> goals;
  PathConditions conditions;
};

bool holds(const VersionBaseline& baseline, const std::u16string& name, const VersionId& version) {
  const auto held = baseline.metamodels.find(name);
  return held != baseline.metamodels.end() && held->second->version == version;
}

bool holdsAvoided(const VersionBaseline& baseline, const PathConditions& conditions) {
  for (const auto& [name, versions] : conditions.avoided) {
    for (const VersionId& version : versions) {
      if (holds(baseline, name, version)) return true;
    }
  }
  return false;
}

bool isAllowed(const BaselineHop& step, const PathConditions& conditions) {
  if (holdsAvoided(step.to, conditions)) return false;
  return std::none_of(step.hops.begin(), step.hops.end(), [&](const auto& entry) {
    const auto kept = conditions.kept.find(entry.first);
    return conditions.held.contains(entry.first) ||
           (kept != conditions.kept.end() && kept->second == entry.second.from);
  });
}

/// The least weight by going through all baselines, with what each has passed.
Weight leastWeight(VersionRepository& repository, const Selection& from,
                   const std::vector<PathGoal>& goals, const PathConditions& conditions) {
  struct State {
    std::uint64_t weight;
    VersionBaseline baseline;
    std::uint64_t passed;
    bool operator<(const State& other) const { return other.weight < weight; }
  };
  const auto passedAt = [&](const VersionBaseline& baseline) {
    std::uint64_t passed = 0;
    for (std::size_t i = 0; i < conditions.via.size(); ++i) {
      if (holds(baseline, conditions.via[i].first, conditions.via[i].second)) passed |= 1U << i;
    }
    return passed;
  };
  std::priority_queue<State> open;
  for (const VersionBaseline& source : repository.combine(from)) {
    if (!holdsAvoided(source, conditions)) open.push({0, source, passedAt(source)});
  }
  std::set<std::pair<std::map<std::u16string, std::string>, std::uint64_t>> closed;
  while (!open.empty()) {
    const State state = open.top();
    open.pop();
    std::map<std::u16string, std::string> versions;
    for (const auto& [name, linked] : state.baseline.metamodels) {
      versions.emplace(name, textOf(linked->version));
    }
    if (!closed.emplace(versions, state.passed).second) continue;
    const bool isArrived =
        state.passed == (1U << conditions.via.size()) - 1 &&
        std::all_of(goals.begin(), goals.end(), [&](const PathGoal& goal) {
          return std::any_of(goal.versions.begin(), goal.versions.end(), [&](const auto& version) {
            return holds(state.baseline, goal.name, version);
          });
        });
    if (isArrived) return state.weight;
    for (const BaselineHop& step : repository.getStepsFrom(state.baseline, *conditions.direction)) {
      if (!isAllowed(step, conditions)) continue;
      open.push({state.weight + repository.getWeight(step.hops), step.to,
                 state.passed | passedAt(step.to)});
    }
  }
  return std::nullopt;
}

/// The goals with those that want the first come down to it.
std::vector<PathGoal> settled(VersionRepository& repository, const ConditionalCase& asked) {
  std::vector<PathGoal> goals = asked.goals;
  for (PathGoal& goal : goals) {
    if (!goal.isFirstWanted) continue;
    for (const VersionId& version : std::vector(goal.versions)) {
      goal.versions = {version};
      if (leastWeight(repository, asked.from, goals, asked.conditions)) break;
    }
  }
  return goals;
}

/// What a path comes to beside the versions that it starts with.
std::vector<Entry> reachedBy(const std::vector<BaselineHop>& path) {
  std::vector<Entry> reached;
  for (const BaselineHop& step : path) {
    for (const auto& [name, linked] : step.to.metamodels) {
      if (!holds(path.front().from, name, linked->version)) {
        reached.emplace_back(name, linked->version);
      }
    }
  }
  return reached;
}

/// The least weight of the paths that do without one of each of these sets of versions.
Weight leastWithoutOneOfEach(VersionRepository& repository, const ConditionalCase& asked,
                             const std::vector<PathGoal>& goals,
                             const std::vector<std::vector<Entry>>& sets,
                             const PathConditions& conditions) {
  if (sets.empty()) return leastWeight(repository, asked.from, goals, conditions);
  Weight least;
  for (const auto& [name, version] : sets.front()) {
    PathConditions further = conditions;
    further.avoided[name].push_back(version);
    const Weight weight =
        leastWithoutOneOfEach(repository, asked, goals, {sets.begin() + 1, sets.end()}, further);
    if (weight && (!least || *weight < *least)) least = weight;
  }
  return least;
}

void expectLeast(const ConditionalCase& asked, RandomRun& run) {
  CatalogueRepository repository{Catalogue(asked.content())};
  const auto goals = settled(repository, asked);
  const Weight least = leastWeight(repository, asked.from, goals, asked.conditions);
  std::vector<std::vector<BaselineHop>> told;
  const SearchLimits limits{.progress =
                                [&](const SearchProgress& progress) {
                                  EXPECT_LE(progress.leastProven,
                                            least.value_or(progress.leastProven));
                                },
                            .betterPath = [&](const auto& path) { told.push_back(path); }};
  const auto paths =
      findAlternativePaths(repository, asked.from, asked.goals, asked.conditions, 3, limits);
  EXPECT_EQ(told.size(), paths.size());
  run.count("path", least && *least > 0);
  run.count("no path", !least);
  run.count("alternatives", paths.size() > 1);
  ASSERT_EQ(paths.empty(), !least);
  std::vector<std::vector<Entry>> before;
  for (const auto& path : paths) {
    expectLegal(repository, path);
    EXPECT_EQ(weightOf(repository, path),
              leastWithoutOneOfEach(repository, asked, goals, before, asked.conditions));
    for (const BaselineHop& step : path) EXPECT_TRUE(isAllowed(step, asked.conditions));
    before.push_back(reachedBy(path));
  }
  if (paths.size() < 3) {
    EXPECT_EQ(leastWithoutOneOfEach(repository, asked, goals, before, asked.conditions),
              std::nullopt);
  }
}

std::string number(std::size_t n) {
  return std::to_string(n);
}

/// A needs nothing, B needs A, and C one of both; so all can be linked.
std::string anyCase(Random& random) {
  constexpr std::size_t last = 3;
  std::string text;
  for (const char name : {'A', 'B', 'C'}) {
    for (std::size_t version = 1; version <= last; ++version) {
      text += name + number(version);
      if (name != 'A') {
        const std::size_t lower = random.upTo(2);
        text += std::string(":") + (name == 'C' && random.chance(50) ? 'B' : 'A') + "[" +
                number(lower) + "," + number(lower + 1 + random.below(3)) + ")";
      }
      text += " ";
      for (std::size_t to = 1; to <= last; ++to) {
        if (to == version || !random.chance(to > version ? 85 : 25)) continue;
        text += name + number(version) + ">" + number(to) + (random.chance(15) ? "! " : " ");
      }
    }
  }
  text += "| ";
  for (const char name : {'A', 'B', 'C'}) {
    if (name == 'B' || random.chance(60)) text += name + number(random.upTo(2)) + " ";
  }
  text += "| B" + number(last);
  if (random.chance(30)) text += random.chance(50) ? ">2>1" : "/2";
  if (random.chance(25)) text += " A" + number(random.upTo(last));
  if (random.chance(20)) text += " C3>2>1";
  text += " | ";
  const auto anyVersion = [&] {
    return std::string(1, "ABC"[random.below(3)]) + number(random.upTo(last));
  };
  if (random.chance(50)) text += "-" + anyVersion() + " ";
  if (random.chance(20)) text += std::string(1, "AC"[random.below(2)]) + " ";
  if (random.chance(20)) text += anyVersion() + " ";
  if (random.chance(50)) text += "+B" + number(random.upTo(last)) + " ";
  if (random.chance(25)) text += "+B" + number(random.upTo(last)) + " ";
  if (random.chance(30)) text += "* ";
  text += "| ";
  for (std::size_t count = random.chance(50) ? random.below(4) : 0; count > 0; --count) {
    const char name = "ABC"[random.below(3)];
    const std::size_t lower = random.upTo(2);
    text += name + number(random.upTo(last)) + "BCA"[name - 'A'] + number(lower) +
            number(lower + 1 + random.below(2)) + " ";
  }
  return text;
}

TEST(ConditionalPath, IsTheLeastOfAllThatKeepToTheConditions) {
  RandomRun run(2000);
  run.ask(anyCase, [&](const std::string& text, Random&) {
    ConditionalCase asked{QuestionText(text)};
    if (asked.from.empty() || !asked.from.contains(u"B")) return;
    expectLeast(asked, run);
  });
  run.expectPercentages({{"path", 6}, {"no path", 4}, {"alternatives", 0.6}});
}

/// The content beside a metamodel X that depends on any version of some names, which makes too many
/// linked metamodels to list. Nothing of it moves.
CatalogueContent besideProduct(CatalogueContent content, char16_t lastName) {
  constexpr std::uint64_t versions = 5;
  CatalogueMetamodel product{{u"X", SemVer{1, 0, 0}, {}}, {}, {}};
  for (char16_t letter = u'P'; letter <= lastName; ++letter) {
    const std::u16string name(1, letter);
    for (std::uint64_t i = 1; i <= versions; ++i) {
      content.metamodels.push_back({{name, SemVer{i, 0, 0}, {}}, {}, {}});
    }
    product.descriptor.dependencies.emplace_back(name, between(1, versions + 1));
  }
  content.metamodels.push_back(std::move(product));
  return content;
}

/// Whether the question can be asked without listing baselines: nothing is to be passed, no goal is
/// several versions at once, also while another one is settled.
bool isFixed(const ConditionalCase& asked) {
  if (!asked.conditions.via.empty()) return false;
  bool isAnyOpen = false;
  for (const PathGoal& goal : asked.goals) {
    if (goal.versions.size() == 1) continue;
    if (isAnyOpen || !goal.isFirstWanted) return false;
    isAnyOpen = true;
  }
  return true;
}

TEST(ConditionalPath, IsTheSameBesideTooManyLinkedMetamodels) {
  RandomRun run(600);
  run.ask(anyCase, [&](const std::string& text, Random& random) {
    ConditionalCase asked{QuestionText(text)};
    if (random.chance(60)) asked.conditions.direction.reset();
    if (asked.from.empty() || !isFixed(asked)) return;
    CatalogueRepository small{Catalogue(asked.content())};
    CatalogueRepository large{Catalogue(besideProduct(asked.content(), u'U'))};
    Selection from = asked.from;
    from.emplace(u"X", SemVer{1, 0, 0});
    const auto expected = findConditionalPath(small, asked.from, asked.goals, asked.conditions);
    const auto path = findConditionalPath(large, from, asked.goals, asked.conditions);
    run.count("path", expected && !expected->empty());
    run.count("no path", !expected);
    ASSERT_EQ(path.has_value(), expected.has_value());
    if (!path) return;
    ASSERT_EQ(path->size(), expected->size());
    for (std::size_t i = 0; i < path->size(); ++i) {
      EXPECT_EQ((*path)[i].hops, (*expected)[i].hops);
      for (const auto& [name, linked] : (*expected)[i].to.metamodels) {
        EXPECT_TRUE(holds((*path)[i].to, name, linked->version));
      }
    }
  });
  run.expectPercentages({{"path", 2}, {"no path", 5}});
}

TEST(ConditionalPath, EndsAtLimitsWhereBaselinesHaveToBeListed) {
  CatalogueRepository repository{
      Catalogue(besideProduct(contentOf(TestRepository("B1 B2 B3 B1>2 B2>3")), u'W'))};
  const Selection from{{u"B", SemVer{1, 0, 0}}, {u"X", SemVer{1, 0, 0}}};
  const std::vector<PathGoal> goals{{u"B", {SemVer{3, 0, 0}}, false}};
  PathConditions conditions;
  std::stop_source stop;
  stop.request_stop();
  const SearchLimits limits{.stop = stop.get_token()};
  conditions.direction = VersionRepository::Unknown;
  EXPECT_THROW(findConditionalPath(repository, from, goals, conditions, limits), SearchStopped);
  conditions = {};
  conditions.via.emplace_back(u"B", SemVer{2, 0, 0});
  EXPECT_THROW(findConditionalPath(repository, from, goals, conditions, limits), SearchStopped);
}

/// D 4 needs C 1, which needs an older D: that stands back, wherever D comes after C.
TEST(ConditionalPath, LeadsOverBaselinesInWhichAVersionStandsBack) {
  CatalogueRepository repository{
      Catalogue(contentOf(TestRepository("B3 C1:D[1,4) D1 D2 D4:C1 D4>2 D1>2! D1>4")))};
  const Selection from{{u"B", SemVer{3, 0, 0}}, {u"D", SemVer{1, 0, 0}}};
  const Selection to{{u"D", SemVer{2, 0, 0}}};
  const auto expected = repository.findPath(repository.combine(from), repository.combine(to),
                                            VersionRepository::Unknown);
  PathConditions conditions;
  conditions.direction = VersionRepository::Unknown;
  const auto path =
      findConditionalPath(repository, from, {{u"D", {SemVer{2, 0, 0}}, false}}, conditions);
  ASSERT_EQ(expected.value().size(), 2U);
  EXPECT_EQ(describe(path), describe(expected));
}

TEST(ConditionalPath, AlternativesFoundAreToldBeforeALimit) {
  CatalogueRepository repository{Catalogue(contentOf(TestRepository("A1 A2 A3 A1>2 A2>3 A1>3!")))};
  std::stop_source stop;
  std::size_t told = 0;
  const SearchLimits limits{.stop = stop.get_token(), .betterPath = [&](const auto& path) {
                              EXPECT_EQ(path.size(), 2U);
                              ++told;
                              stop.request_stop();
                            }};
  try {
    findAlternativePaths(repository, {{u"A", SemVer{1, 0, 0}}}, {{u"A", {SemVer{3, 0, 0}}, false}},
                         {}, 3, limits);
    ADD_FAILURE() << "no exception";
  } catch (const SearchStopped& stopped) {
    EXPECT_EQ(stopped.progress().leastProven, 4U);
  }
  EXPECT_EQ(told, 1U);
}

TEST(ConditionalPath, SaysWhatCannotBeAsked) {
  CatalogueRepository repository{Catalogue(contentOf(TestRepository("A1..2 B1 B2 B1>2")))};
  const Selection from{{u"A", SemVer{1, 0, 0}}};
  PathConditions conditions;
  conditions.via.emplace_back(u"B", SemVer{2, 0, 0});
  EXPECT_THROW(findConditionalPath(repository, from, {}, conditions), std::invalid_argument);
  EXPECT_EQ(versionsMeant(repository, u"A", ">=1 <2"), (std::vector<VersionId>{SemVer{1, 0, 0}}));
  EXPECT_EQ(versionsMeant(repository, u"A", "latest"), (std::vector<VersionId>{SemVer{2, 0, 0}}));
  EXPECT_TRUE(versionsMeant(repository, u"A", "^7").empty());
  EXPECT_THROW(versionsMeant(repository, u"A", "spring"), std::invalid_argument);
}

}  // namespace
}  // namespace test::conditional_path
