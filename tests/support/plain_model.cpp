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

std::size_t PlainModel::placeOf(const Metamodel& descriptor) const {
  const auto& all = repository_.metamodels;
  return static_cast<std::size_t>(std::find(all.begin(), all.end(), descriptor) - all.begin());
}

std::optional<std::size_t> PlainModel::find(const std::u16string& name,
                                            const VersionId& asked) const {
  const std::string text = brief(name, asked);
  if (repository_.failing.contains("getMetamodel " + text)) return std::nullopt;
  const auto other = repository_.otherAnswers.find(text);
  const VersionId& version = other == repository_.otherAnswers.end() ? asked : other->second;
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
    const auto& choices = linked(placeOf(candidate));
    options.insert(options.end(), choices.begin(), choices.end());
  }
  return options;
}

const std::vector<Baseline>& PlainModel::linked(std::size_t place) {
  if (const auto known = linked_.find(place); known != linked_.end()) return known->second;
  if (!pending_.insert(place).second) throw Conflict();  // depends on itself
  std::vector<Baseline> choices{{{metamodel(place).name, place}}};
  try {
    // The repository's order is that of such a map, filled in the order of the dependencies.
    std::unordered_map<std::u16string, std::vector<Baseline>> optionsByName;
    for (const Dependency& dependency : metamodel(place).dependencies) {
      optionsByName.try_emplace(dependency.name, optionsFor(dependency));
    }
    for (const auto& [name, options] : optionsByName) extend(place, choices, options);
    if (choices.empty() || fails("loadMetamodel", place)) throw Conflict();
    if (!repository_.requirements.empty() && fails("findRequirements", place)) throw Conflict();
    for (Baseline& choice : choices) linkAsHost(place, choice);
  } catch (...) {
    pending_.erase(place);
    throw;
  }
  pending_.erase(place);
  return linked_.emplace(place, std::move(choices)).first->second;
}

void PlainModel::extend(std::size_t linking, std::vector<Baseline>& choices,
                        const std::vector<Baseline>& options) {
  std::vector<Baseline> extended;
  for (const Baseline& option : options) {
    isExact_ &= !option.contains(metamodel(linking).name);
    for (const Baseline& choice : choices) {
      if (auto both = merged(choice, option)) extended.push_back(*std::move(both));
    }
  }
  choices = std::move(extended);
}

void PlainModel::linkAsHost(std::size_t linking, Baseline& choice) {
  const auto links =
      repository_.hostLinks.find(brief(metamodel(linking).name, metamodel(linking).version));
  if (links == repository_.hostLinks.end()) return;
  for (const auto& [name, version] : links->second) {
    const auto place = find(name, version);
    if (!place) throw Conflict();
    std::vector<Baseline> choices{choice};
    extend(linking, choices, linked(*place));
    if (!choices.empty()) choice = choices.front();
  }
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
  std::erase_if(result, [&](const Baseline& one) { return !meetsRequirements(one, false); });
  return result;
}

bool PlainModel::meetsRequirements(const Baseline& baseline, bool isComplete) const {
  for (const auto& [name, place] : baseline) {
    const auto known = repository_.requirements.find(brief(name, metamodel(place).version));
    if (known == repository_.requirements.end()) continue;
    for (const auto& [required, range, isOptional] : known->second) {
      const auto held = baseline.find(required);
      const bool isMet = held == baseline.end() ? isOptional || !isComplete
                                                : includes(range, metamodel(held->second));
      if (!isMet) return false;
    }
  }
  return true;
}

bool PlainModel::fails(const std::string& operation, std::size_t place) const {
  return repository_.failing.contains(operation + " " +
                                      brief(metamodel(place).name, metamodel(place).version));
}

std::vector<Hop> PlainModel::offeredHops(std::size_t from) const {
  std::vector<Hop> result;
  const auto leaves = [&](const std::u16string& name, const Hop& hop) {
    return name == metamodel(from).name && hop.from == metamodel(from).version;
  };
  for (const Hop& hop : repository_.hops) {
    if (leaves(hop.name, hop)) result.push_back(hop);
  }
  for (const auto& [name, hop] : repository_.foreignHops) {
    if (leaves(name, hop)) result.push_back(hop);
  }
  return result;
}

std::vector<Hop> PlainModel::hopsFrom(std::size_t from, Direction wanted) const {
  std::vector<Hop> result = offeredHops(from);
  if (wanted == anyDirection) return result;
  std::erase_if(result, [&](const Hop& hop) {
    const auto target = find(hop.name, hop.to);
    if (!target && failures_ == Failures::Thrown) throw Failure();
    return !target || areOpposite(wanted, direction(from, *target));
  });
  return result;
}

bool PlainModel::losesHop(const Baseline& baseline, Direction wanted) const {
  return wanted != anyDirection &&
         std::any_of(baseline.begin(), baseline.end(), [&](const auto& entry) {
           const auto hops = offeredHops(entry.second);
           return std::any_of(hops.begin(), hops.end(), [&](const Hop& hop) {
             return !find(hop.name, hop.to) &&
                    !repository_.failing.contains("getMetamodel " + brief(hop.name, hop.to));
           });
         });
}

/// The versions that hops lead to; none when one is not there.
std::optional<Baseline> PlainModel::selectionAfter(const Baseline& from,
                                                   const LockstepHop& hops) const {
  Baseline selection = from;
  for (const auto& [name, hop] : hops) {
    const auto place = find(name, hop.to);
    const bool fails = repository_.failing.contains("getMetamodel " + brief(name, hop.to));
    if (fails && failures_ == Failures::Thrown) throw Failure();
    if (!place) return std::nullopt;
    selection[name] = *place;
  }
  return selection;
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
    if (fails("findHops", place)) {
      if (failures_ == Failures::Thrown) throw Failure();
      return {};
    }
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
    const auto selection = selectionAfter(from, choice);
    if (!selection) continue;
    try {
      for (const Baseline& to : combine(*selection)) {
        if (meetsRequirements(to, true)) steps.push_back({choice, to});
      }
    } catch (const Conflict&) {
      if (failures_ == Failures::Thrown) throw;
    }
  }
  return steps;
}

Baseline PlainModel::baselineOf(const VersionBaseline& baseline) const {
  Baseline result;
  for (const auto& [name, linked] : baseline.metamodels) result[name] = placeOf(*linked);
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
