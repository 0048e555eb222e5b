// Uniform-cost search of each name by itself, from what the sources hold on: the nearest version is
// asked for its hops next. A version beyond its name's radius is put aside until the radius grows.
// Versions are told apart by what the application answers, not by the number that was asked for.

#include "pathfinder/planning/version_exploration.hpp"

#include <algorithm>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

bool isFarther(const std::pair<std::uint64_t, SurveyedVersion*>& left,
               const std::pair<std::uint64_t, SurveyedVersion*>& right) {
  return left.first > right.first;
}

}  // namespace

SurveyedVersion* VersionExploration::known(const SurveyedName& name,
                                           const Metamodel& descriptor) const {
  return name.known.find(descriptor.version, [&](const SurveyedVersion& version) {
    return version.descriptor == &descriptor || *version.descriptor == descriptor;
  });
}

SurveyedVersion& VersionExploration::versionOf(SurveyedName& name, const Metamodel& descriptor) {
  SurveyedVersion* version = known(name, descriptor);
  return version != nullptr ? *version : addVersion(name, descriptor);
}

SurveyedVersion& VersionExploration::versionOf(SurveyedName& name, Metamodel&& descriptor) {
  SurveyedVersion* version = known(name, descriptor);
  if (version != nullptr) return *version;
  return addVersion(name, state_.descriptors.emplace_back(std::move(descriptor)));
}

SurveyedVersion& VersionExploration::addVersion(SurveyedName& name, const Metamodel& descriptor) {
  SurveyedVersion& version = state_.versions.emplace_back(name, descriptor);
  name.known.add(version);
  return version;
}

void VersionExploration::reach(SurveyedVersion& version, std::uint64_t distance) {
  if (distance >= version.distance) return;
  version.distance = distance;
  wait(version);
}

void VersionExploration::wait(SurveyedVersion& version) {
  auto& waiting = version.name->waiting;
  if (waiting.empty()) waiting_.push_back(version.name);
  waiting.emplace_back(version.distance, &version);
  std::push_heap(waiting.begin(), waiting.end(), isFarther);
}

void VersionExploration::explore() {
  while (!waiting_.empty()) {
    SurveyedName& name = *waiting_.back();
    waiting_.pop_back();
    explore(name);
  }
}

void VersionExploration::explore(SurveyedName& name) {
  while (!name.waiting.empty()) {
    const auto [distance, version] = name.waiting.front();
    std::pop_heap(name.waiting.begin(), name.waiting.end(), isFarther);
    name.waiting.pop_back();
    if (distance == version->distance) explore(*version);
  }
}

void VersionExploration::explore(SurveyedVersion& version) {
  SurveyedName& name = *version.name;
  const std::uint64_t radius = leadsToTargets(version) ? SurveyedVersion::unreached : name.radius;
  if (version.distance >= radius) name.beyond.push_back(&version);
  if (version.distance > radius) return;
  if (!std::exchange(version.isEntered, true)) {
    name.versions.push_back(&version);
    ++findings_;
  }
  if (version.distance == radius) return;
  if (!version.isAsked) askForHops(version);
  followHops(version);
}

std::uint64_t VersionExploration::frontier(const SurveyedName& name) const {
  std::uint64_t least = SurveyedVersion::unreached;
  for (const SurveyedVersion* version : name.beyond) {
    const std::uint64_t next = version->isEntered ? hopWeight(false) : 0;
    least = std::min(least, version->distance + next);
  }
  return least;
}

bool VersionExploration::goTo(SurveyedName& name, std::uint64_t radius) {
  if (frontier(name) > radius) return false;
  name.radius = radius;
  for (SurveyedVersion* version : name.beyond) wait(*version);
  name.beyond.clear();
  return true;
}

void VersionExploration::askForHops(SurveyedVersion& version) {
  checkpoint();
  version.isAsked = true;
  ++findings_;
  hops_.clear();
  const bool areKnown = state_.failures.attempt(version, SurveyAttempt::AskForHops, [&] {
    state_.question.host.findHops(*version.name->text, version.descriptor->version, hops_);
  });
  if (!areKnown) {
    noteUnknownHops(version);
    return;
  }
  version.firstTarget = state_.hopTargets.size();
  version.hops.reserve(hops_.size());
  for (Hop& hop : hops_) {
    const auto keep = [&] { keepHop(version, hop); };
    if (!state_.failures.attempt(version, SurveyAttempt::AskForHops, keep))
      noteUnknownHops(version);
  }
}

/// Some hop might lead anywhere, above all to what a target holds.
void VersionExploration::noteUnknownHops(SurveyedVersion& version) {
  SurveyedName& name = *version.name;
  version.hasUnknownHops = true;
  for (const Metamodel* target : name.targets) {
    reach(versionOf(name, *target), version.distance + hopWeight(false));
  }
}

/// Keeps a hop of a version unless it goes against the direction.
void VersionExploration::keepHop(SurveyedVersion& version, Hop& hop) {
  // Hop collection looks the target up under the hop's own name, which may differ from the key.
  SurveyedName& name = *version.name;
  const bool hasOwnName = hop.name == *name.text;
  SurveyedVersion* target = hasOwnName ? lookUp(name, hop.to) : nullptr;
  if (state_.question.direction != Direction::Unknown) {
    std::optional<Metamodel> other;
    if (!hasOwnName) other = state_.question.host.getMetamodel(hop.name, hop.to);
    if (target == nullptr && !other) {
      version.losesHop = true;
      return;
    }
    if (goesAgainstDirection(version, target != nullptr ? *target->descriptor : *other)) return;
  }
  if (!hasOwnName) target = lookUp(name, hop.to);
  if (target != nullptr) {
    state_.hopTargets.push_back({static_cast<std::uint32_t>(version.hops.size()), target});
    ++version.targetCount;
  }
  version.hops.push_back(std::move(hop));
}

void VersionExploration::followHops(const SurveyedVersion& version) {
  for (std::size_t i = 0; i < version.targetCount; ++i) {
    const auto [place, target] = state_.hopTargets[version.firstTarget + i];
    reach(*target, version.distance + hopWeight(version.hops[place].expensive));
  }
}

bool VersionExploration::goesAgainstDirection(const SurveyedVersion& version,
                                              const Metamodel& target) const {
  return areOpposite(state_.question.direction,
                     state_.question.host.directionBetween(*version.descriptor, target));
}

/// The version that a hop of this name leads to; null when the application has none.
SurveyedVersion* VersionExploration::lookUp(SurveyedName& name, const VersionId& number) {
  SurveyedVersion* answer =
      name.known.find(number, [](const SurveyedVersion& version) { return version.isAnswer; });
  if (answer != nullptr) return answer;
  if (const auto others = otherAnswers_.find(&name); others != otherAnswers_.end()) {
    const auto known = others->second.find(number);
    if (known != others->second.end()) return known->second;
  }
  SurveyedVersion* version = ask(name, number);
  noteAnswer(name, number, version);
  return version;
}

SurveyedVersion* VersionExploration::ask(SurveyedName& name, const VersionId& number) {
  std::optional<Metamodel> found = state_.question.host.getMetamodel(*name.text, number);
  if (!found) return nullptr;
  if (found->name == *name.text) return &versionOf(name, *std::move(found));
  state_.isUnfit = true;
  return nullptr;
}

void VersionExploration::noteAnswer(SurveyedName& name, const VersionId& number,
                                    SurveyedVersion* version) {
  if (version != nullptr && version->descriptor->version == number) {
    version->isAnswer = true;
  } else {
    otherAnswers_[&name].emplace(number, version);
  }
}

/// Whether every target mentions the name, and hops in the direction asked for may lead from the
/// version to what one holds. Hops that do not go against a direction never lead back behind where
/// they began; but a hop may be judged by another name than the one it moves, so the other versions
/// are only taken to be far off. What a source holds is asked for its hops in any case.
bool VersionExploration::leadsToTargets(SurveyedVersion& version) {
  const SurveyedName& name = *version.name;
  if (!state_.isMentionedByEveryTarget(name)) return false;
  if (version.distance == 0 || state_.question.direction == Direction::Unknown) return true;
  if (!version.mayLeadToTargets) {
    version.mayLeadToTargets = true;
    state_.failures.attempt(version, SurveyAttempt::Compare, [&] {
      version.mayLeadToTargets = !std::all_of(
          name.targets.begin(), name.targets.end(),
          [&](const Metamodel* target) { return goesAgainstDirection(version, *target); });
    });
  }
  return *version.mayLeadToTargets;
}

}  // namespace tarn::evolution::pathfinder
