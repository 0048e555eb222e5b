#include "catalogue/conditions/conditional_path.hpp"

#include <algorithm>
#include <stdexcept>
#include <tuple>

#include "catalogue/conditions/conditional_repository.hpp"
#include "catalogue/conditions/pruned_content.hpp"
#include "catalogue/import/foreign_range.hpp"
#include "catalogue/precedence.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::SearchLimits;
using pathfinder::SearchProgress;
using pathfinder::SearchStopped;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;

namespace {

using Path = std::vector<BaselineHop>;

/// Asks for paths to one set of goals after another.
class ConditionalSearch {
 public:
  ConditionalSearch(BrowsableRepository& content, const Selection& from,
                    const PathConditions& conditions, const SearchLimits& limits)
      : content_(content),
        from_(from),
        conditions_(conditions),
        limits_(limits),
        repository_(content, conditions) {
    limits_.betterPath = {};  // its paths may be those of another content
    const auto sources = content.tryCombine(from);
    areTooMany_ = !sources;
    if (sources) addSources(*sources);
  }

  std::optional<Path> ask(const std::vector<PathGoal>& goals) {
    if (!areTooMany_) {
      if (auto answer = askWithinBounds(goals)) return *std::move(answer);
      areTooMany_ = true;
    }
    if (auto answer = askUnlisted(goals)) return *std::move(answer);
    if (!isTakingAll_) {
      repository_.takeAll();
      isTakingAll_ = true;
      addSources(content_.combine(from_, limits_));
    }
    return askBetweenBaselines(goals);
  }

 private:
  /// No value where there are too many linked metamodels for it.
  std::optional<std::optional<Path>> askWithinBounds(const std::vector<PathGoal>& goals) {
    try {
      auto path = askBetweenBaselines(goals);
      if (!repository_.hasMetTooMany()) return path;
    } catch (const SearchStopped&) {
      throw;
    } catch (...) {
      if (!repository_.hasMetTooMany()) throw;
    }
    return std::nullopt;
  }

  /// By way of the selections alone; no value for questions of another kind.
  std::optional<std::optional<Path>> askUnlisted(const std::vector<PathGoal>& goals) {
    const bool areFixed = std::all_of(
        goals.begin(), goals.end(), [](const PathGoal& goal) { return goal.versions.size() == 1; });
    if (!areFixed || !repository_.passedNames().empty()) return std::nullopt;
    Selection to;
    for (const PathGoal& goal : goals) to.emplace(goal.name, goal.versions.front());
    return findPrunedPath(content_, from_, to, repository_.conditions(), limits_);
  }

  std::optional<Path> askBetweenBaselines(const std::vector<PathGoal>& goals) {
    targets_.clear();
    std::vector<PathGoal> all = goals;
    for (const std::u16string& name : repository_.passedNames()) {
      const bool isGoal = std::any_of(goals.begin(), goals.end(),
                                      [&](const PathGoal& goal) { return goal.name == name; });
      if (!isGoal) all.push_back({name, everyVersion(name)});
    }
    expectFew(all);
    Selection selection;
    addTargets(all, 0, selection);
    if (sources_.empty() || targets_.empty()) return std::nullopt;
    repository_.invalidatePathfindingCache();
    const auto direction = conditions_.direction.value_or(
        repository_.computeDirection(sources_.front(), targets_.front()));
    const auto path = repository_.findPath(sources_, targets_, direction, limits_);
    if (!path) return std::nullopt;
    return repository_.inContent(*path);
  }

  void addSources(const std::vector<VersionBaseline>& sources) {
    sources_.clear();
    try {
      for (const VersionBaseline& source : sources) addSource(source);
    } catch (const std::length_error&) {
      if (!repository_.hasMetTooMany()) throw;
      areTooMany_ = true;
    }
  }

  void addSource(const VersionBaseline& source) {
    Selection selection;
    for (const auto& [name, linked] : source.metamodels) selection.emplace(name, linked->version);
    for (const std::u16string& name : repository_.passedNames()) {
      if (selection.contains(name)) continue;
      throw std::invalid_argument("the source does not hold " + quotedName(name) +
                                  ", of which a version is to be passed");
    }
    for (VersionBaseline& start : repository_.starts(selection, limits_)) {
      sources_.push_back(std::move(start));
    }
  }

  std::vector<VersionId> everyVersion(const std::u16string& name) {
    std::vector<VersionId> versions;
    for (const CatalogueMetamodel& metamodel : content_.listMetamodels(name)) {
      versions.push_back(metamodel.descriptor.version);
    }
    return versions;
  }

  static void expectFew(const std::vector<PathGoal>& goals) {
    std::size_t combinations = 1;
    for (const PathGoal& goal : goals) {
      combinations *= std::max<std::size_t>(goal.versions.size(), 1);
      if (combinations <= mostTargets) continue;
      throw std::invalid_argument("the versions asked for have more than " +
                                  std::to_string(mostTargets) + " combinations");
    }
  }

  void addTargets(const std::vector<PathGoal>& goals, std::size_t place, Selection& selection) {
    if (place == goals.size()) {
      for (VersionBaseline& end : repository_.ends(selection, limits_))
        targets_.push_back(std::move(end));
      return;
    }
    for (const VersionId& version : goals[place].versions) {
      selection.insert_or_assign(goals[place].name, version);
      addTargets(goals, place + 1, selection);
    }
  }

  BrowsableRepository& content_;
  const Selection from_;
  const PathConditions conditions_;
  SearchLimits limits_;
  ConditionalRepository repository_;
  bool areTooMany_ = false;  // linked metamodels
  bool isTakingAll_ = false;
  std::vector<VersionBaseline> sources_;
  std::vector<VersionBaseline> targets_;
};

/// Settles one goal after the other; in the end each is for the version that it has come to.
std::optional<Path> settle(ConditionalSearch& search, std::vector<PathGoal>& goals) {
  std::optional<Path> path;
  bool isAsked = false;
  for (std::size_t place = 0; place < goals.size(); ++place) {
    if (!goals[place].isFirstWanted) continue;
    const std::vector<VersionId> versions = std::move(goals[place].versions);
    isAsked = true;
    path.reset();
    for (auto version = versions.begin(); !path && version != versions.end(); ++version) {
      goals[place].versions = {*version};
      path = search.ask(goals);
    }
    if (!path) return std::nullopt;
    goals[place].isFirstWanted = false;
  }
  return isAsked ? path : search.ask(goals);
}

/// Has a part of a question searched for, whose bounds are not those of the whole: told is what is
/// known of that.
template <class Search>
std::optional<Path> searchPart(const SearchLimits& limits, const SearchProgress& known,
                               const Search& search) {
  const auto ofWhole = [&](const SearchProgress& progress) {
    return SearchProgress{progress.stage, known.leastProven, known.leastFound};
  };
  SearchLimits own = limits;
  if (limits.progress) {
    own.progress = [&](const SearchProgress& progress) { limits.progress(ofWhole(progress)); };
  }
  try {
    return search(own);
  } catch (const SearchStopped& stopped) {
    throw SearchStopped(stopped.reason(), ofWhole(stopped.progress()));
  }
}

bool isAnyFirstWanted(const std::vector<PathGoal>& goals) {
  return std::any_of(goals.begin(), goals.end(),
                     [](const PathGoal& goal) { return goal.isFirstWanted; });
}

/// What the steps of a path lead to and its source does not hold.
using Reached = std::vector<std::pair<std::u16string, VersionId>>;

Reached reachedBy(const Path& path) {
  Reached reached;
  for (const BaselineHop& step : path) {
    for (const auto& [name, linked] : step.to.metamodels) {
      const auto before = path.front().from.metamodels.find(name);
      if (before != path.front().from.metamodels.end() &&
          before->second->version == linked->version) {
        continue;
      }
      const std::pair entry(name, linked->version);
      if (std::find(reached.begin(), reached.end(), entry) == reached.end()) {
        reached.push_back(entry);
      }
    }
  }
  std::sort(reached.begin(), reached.end(), [](const auto& left, const auto& right) {
    return std::pair(left.first, textOf(left.second)) <
           std::pair(right.first, textOf(right.second));
  });
  return reached;
}

bool doesWithoutOneOf(const Reached& reached, const Reached& before) {
  return std::any_of(before.begin(), before.end(), [&](const auto& entry) {
    return std::find(reached.begin(), reached.end(), entry) == reached.end();
  });
}

}  // namespace

std::vector<VersionId> newestFirst(BrowsableRepository& repository, const std::u16string& name) {
  std::vector<std::pair<Precedence, VersionId>> ordered;
  for (const CatalogueMetamodel& metamodel : repository.listMetamodels(name)) {
    if (const auto precedence = metamodel.precedence()) {
      ordered.emplace_back(*precedence, metamodel.descriptor.version);
    }
  }
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const auto& left, const auto& right) { return right.first < left.first; });
  std::vector<VersionId> versions;
  versions.reserve(ordered.size());
  for (auto& [precedence, version] : ordered) versions.push_back(std::move(version));
  return versions;
}

std::vector<VersionId> versionsMeant(BrowsableRepository& repository, const std::u16string& name,
                                     const std::string& text) {
  const VersionId written = parseVersion(text);
  if (const auto found = repository.getMetamodel(name, written)) return {found->version};
  std::vector<VersionId> versions = newestFirst(repository, name);
  if (text == "latest") {
    versions.resize(std::min<std::size_t>(versions.size(), 1));
    return versions;
  }
  const ForeignRange range = parseForeignRange(text, RangeGrammar::Npm);
  std::erase_if(versions, [&](const VersionId& version) {
    const std::string own = textOf(version);
    return !range.matches(own, parseFullVersion(own));
  });
  return versions;
}

std::optional<Path> findConditionalPath(BrowsableRepository& repository, const Selection& from,
                                        const std::vector<PathGoal>& goals,
                                        const PathConditions& conditions,
                                        const SearchLimits& limits) {
  std::vector<PathGoal> settled = goals;
  const auto search = [&](const SearchLimits& own) {
    ConditionalSearch asked(repository, from, conditions, own);
    return settle(asked, settled);
  };
  return isAnyFirstWanted(goals) ? searchPart(limits, {}, search) : search(limits);
}

namespace {

// A tree of searches, as of Reiter's hitting sets: each node avoids some versions, and has the
// least path without them. The node with the lightest path is looked at next. Its path is an
// alternative if it does without a version of each one before; then each child avoids one more of
// the versions that it reaches, otherwise one more of those of a path before, all of which it
// reaches. A path that does without a version of every one before lies below some node that has not
// been looked at, so none that is lighter is missed.
class AlternativeSearch {
 public:
  AlternativeSearch(BrowsableRepository& repository, const Selection& from,
                    const std::vector<PathGoal>& goals, const SearchLimits& limits)
      : repository_(repository), from_(from), goals_(goals), limits_(limits) {}

  std::vector<Path> find(const PathConditions& conditions, std::size_t count) {
    begin(conditions);
    std::vector<Path> found;
    while (found.size() < count && !open_.empty()) {
      const Node node = takeLightest();
      const Reached reached = reachedBy(node.path);
      const auto repeated = std::find_if_not(
          found_.begin(), found_.end(),
          [&](const Reached& before) { return doesWithoutOneOf(reached, before); });
      const Reached toAvoid = repeated == found_.end() ? reached : *repeated;
      if (repeated == found_.end()) {
        found.push_back(node.path);
        found_.push_back(reached);
        if (limits_.betterPath) limits_.betterPath(node.path);
      }
      if (found.size() < count) branch(node, toAvoid);
    }
    return found;
  }

 private:
  using Avoided = std::set<std::pair<std::u16string, std::string>>;

  struct Node {
    PathConditions conditions;
    Avoided added;
    Path path;
    std::uint64_t weight;
  };

  void begin(const PathConditions& conditions) {
    const auto searchAll = [&](const SearchLimits& own) { return search(conditions, own); };
    add(conditions, {},
        isAnyFirstWanted(goals_) ? searchPart(limits_, {}, searchAll) : searchAll(limits_));
    if (open_.empty()) return;
    leastOfAll_.leastProven = open_.front().weight;
    leastOfAll_.leastFound = open_.front().weight;
  }

  std::optional<Path> search(const PathConditions& conditions, const SearchLimits& limits) {
    ConditionalSearch asked(repository_, from_, conditions, limits);
    return settle(asked, goals_);
  }

  void add(const PathConditions& conditions, const Avoided& added, std::optional<Path>&& path) {
    if (!path) return;
    std::uint64_t weight = 0;
    for (const BaselineHop& step : *path) weight += repository_.getWeight(step.hops);
    open_.push_back({conditions, added, *std::move(path), weight});
  }

  Node takeLightest() {
    const auto lightest =
        std::min_element(open_.begin(), open_.end(), [](const Node& left, const Node& right) {
          return std::tie(left.weight, left.added) < std::tie(right.weight, right.added);
        });
    Node node = std::move(*lightest);
    open_.erase(lightest);
    return node;
  }

  void branch(const Node& node, const Reached& toAvoid) {
    for (const auto& [name, version] : toAvoid) {
      PathConditions conditions = node.conditions;
      conditions.avoided[name].push_back(version);
      Avoided added = node.added;
      added.emplace(name, textOf(version));
      if (!met_.insert(added).second) continue;
      add(conditions, added, searchPart(limits_, leastOfAll_, [&](const SearchLimits& own) {
            return search(conditions, own);
          }));
    }
  }

  BrowsableRepository& repository_;
  const Selection& from_;
  std::vector<PathGoal> goals_;  // each for one version once the first path is found
  const SearchLimits& limits_;
  SearchProgress leastOfAll_;  // of the first path
  std::vector<Node> open_;
  std::set<Avoided> met_;
  std::vector<Reached> found_;  // by each path found
};

}  // namespace

std::vector<Path> findAlternativePaths(BrowsableRepository& repository, const Selection& from,
                                       const std::vector<PathGoal>& goals,
                                       const PathConditions& conditions, std::size_t count,
                                       const SearchLimits& limits) {
  return AlternativeSearch(repository, from, goals, limits).find(conditions, count);
}

}  // namespace tarn::evolution::catalogue
