#include "support/plain_model.hpp"

#include <algorithm>
#include <unordered_map>

namespace test {

namespace {

using Baseline = PlainModel::Baseline;
using Direction = VersionRepository::Direction;

/// What two selections make together, unless they disagree.
std::optional<Baseline> merged(const Baseline& left, const Baseline& right) {
  Baseline result = left;
  for (const auto& [name, place] : right) {
    if (result.emplace(name, place).first->second != place) return std::nullopt;
  }
  return result;
}

bool areOpposite(Direction left, Direction right) {
  return (left == forward && right == backward) || (left == backward && right == forward);
}

}  // namespace

std::optional<SemVer> PlainModel::semVerOf(const Metamodel& metamodel) const {
  if (metamodel.version.isSemVer()) return metamodel.version.getSemVer();
  const auto found = repository_.equivalents.find({metamodel.name, metamodel.version.getText()});
  if (found == repository_.equivalents.end()) return std::nullopt;
  return found->second;
}

bool PlainModel::includes(const VersionRange& range, const Metamodel& metamodel) const {
  if (!range.isSemVerRange()) return VersionId(range.getText()) == metamodel.version;
  const auto version = semVerOf(metamodel);
  const auto& [lower, upper] = range.getSemVerRange();
  return version && (lower < *version || lower == *version) && *version < upper;
}

std::optional<std::size_t> PlainModel::find(const std::u16string& name,
                                            const VersionId& version) const {
  const auto wanted = semVerOf(Metamodel(name, version, {}));
  const auto& all = repository_.metamodels;
  const auto found = std::find_if(all.begin(), all.end(), [&](const Metamodel& metamodel) {
    if (metamodel.name != name) return false;
    return wanted ? semVerOf(metamodel) == wanted : metamodel.version == version;
  });
  if (found == all.end()) return std::nullopt;
  return static_cast<std::size_t>(found - all.begin());
}

Direction PlainModel::direction(std::size_t from, std::size_t to) const {
  if (from == to) return VersionRepository::Equal;
  const auto before = semVerOf(metamodel(from));
  const auto after = semVerOf(metamodel(to));
  if (!before && !after) return anyDirection;
  if (before == after) return VersionRepository::Equal;
  return !before || (after && *before < *after) ? forward : backward;
}

Direction PlainModel::direction(const Baseline& from, const Baseline& to) const {
  Direction result = anyDirection;
  for (const auto& [name, place] : from) {
    const auto after = to.find(name);
    if (after == to.end()) continue;
    const Direction moved = direction(place, after->second);
    if (areOpposite(result, moved)) return anyDirection;
    if (moved == forward || moved == backward) result = moved;
  }
  return result;
}

std::vector<Baseline> PlainModel::optionsFor(const Dependency& dependency) {
  std::vector<Baseline> options;
  for (std::size_t place = 0; place < repository_.metamodels.size(); ++place) {
    const Metamodel& candidate = metamodel(place);
    if (candidate.name != dependency.name || !includes(dependency.range, candidate)) continue;
    const auto& choices = linked(place);
    options.insert(options.end(), choices.begin(), choices.end());
  }
  return options;
}

const std::vector<Baseline>& PlainModel::linked(std::size_t place) {
  if (const auto known = linked_.find(place); known != linked_.end()) return known->second;
  // The repository's order is that of such a map, filled in the order of the dependencies.
  std::unordered_map<std::u16string, std::vector<Baseline>> optionsByName;
  for (const Dependency& dependency : metamodel(place).dependencies) {
    optionsByName.try_emplace(dependency.name, optionsFor(dependency));
  }
  std::vector<Baseline> choices{{{metamodel(place).name, place}}};
  for (const auto& [name, options] : optionsByName) {
    std::vector<Baseline> extended;
    for (const Baseline& option : options) {
      for (const Baseline& choice : choices) {
        if (auto both = merged(choice, option)) extended.push_back(*std::move(both));
      }
    }
    choices = std::move(extended);
  }
  if (choices.empty()) throw Conflict();
  return linked_.emplace(place, std::move(choices)).first->second;
}

std::vector<Baseline> PlainModel::combine(const Baseline& selection) {
  if (selection.empty()) return {};
  for (const auto& [name, place] : selection) linked(place);
  std::vector<Baseline> result(1);
  for (const auto& [name, place] : selection) {
    std::vector<Baseline> extended;
    for (const Baseline& partial : result) {
      for (const Baseline& choice : linked(place)) {
        if (auto both = merged(partial, choice)) extended.push_back(*std::move(both));
      }
    }
    result = std::move(extended);
  }
  return result;
}

std::vector<Hop> PlainModel::hopsFrom(std::size_t from, Direction wanted) const {
  std::vector<Hop> result;
  for (const Hop& hop : repository_.hops) {
    if (hop.name != metamodel(from).name || !(hop.from == metamodel(from).version)) continue;
    if (!areOpposite(wanted, direction(from, find(hop.name, hop.to).value()))) {
      result.push_back(hop);
    }
  }
  return result;
}

const std::vector<PlainModel::Step>& PlainModel::stepsFrom(const Baseline& from,
                                                           Direction direction) {
  const std::pair among(repository_.metamodels.size(), repository_.hops.size());
  if (std::exchange(stepsAmong_, among) != among) steps_.clear();
  const auto known = steps_.find({from, direction});
  if (known != steps_.end()) return known->second;
  return steps_.emplace(std::pair(from, direction), tryStepsFrom(from, direction)).first->second;
}

std::vector<PlainModel::Step> PlainModel::tryStepsFrom(const Baseline& from, Direction direction) {
  std::vector<LockstepHop> choices(1);
  for (const auto& [name, place] : from) {
    const std::vector<LockstepHop> withoutThis = choices;
    for (const Hop& hop : hopsFrom(place, direction)) {
      for (LockstepHop choice : withoutThis) {
        choice.emplace(name, hop);
        choices.push_back(choice);
      }
    }
  }
  choices.erase(choices.begin());  // the one without hops
  std::vector<Step> steps;
  for (const LockstepHop& choice : choices) {
    Baseline selection = from;
    for (const auto& [name, hop] : choice) selection[name] = find(name, hop.to).value();
    for (const Baseline& to : combine(selection)) steps.push_back({choice, to});
  }
  return steps;
}

Baseline PlainModel::baselineOf(const VersionBaseline& baseline) const {
  Baseline result;
  for (const auto& [name, linked] : baseline.metamodels) {
    result[name] = find(name, linked->version).value();
  }
  return result;
}

std::string PlainModel::describe(const Baseline& baseline) const {
  std::string result;
  for (const auto& [name, place] : baseline) {
    result += (result.empty() ? "" : " ") + brief(name, metamodel(place).version);
  }
  return result;
}

std::string PlainModel::describe(const std::vector<Baseline>& baselines) const {
  std::string result;
  for (const Baseline& baseline : baselines) {
    result += (result.empty() ? "" : ", ") + describe(baseline);
  }
  return result;
}

std::string PlainModel::describe(const std::vector<Step>& steps) const {
  std::string result;
  for (const auto& [hops, to] : steps) {
    result += test::describe(hops) + "=> " + describe(to) + "\n";
  }
  return result;
}

}  // namespace test
