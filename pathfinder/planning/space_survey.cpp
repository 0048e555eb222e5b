// Three rounds that are repeated until nothing changes: explore each name by itself, from what the
// sources hold on; mark, backwards, what leads to a target; link what a path may hold, and enter
// what its links may bring in.
//
// Names that a target leaves free have a radius, beyond which they are not explored; so have, of
// the others, versions from which the direction asked for leads away from what the targets hold. It
// starts with the least distance at which a version of the name can stand beside each target. A
// plan that uses a version further away by d costs at least d more than the least that the targets
// need together; so when a plan is found, its total tells how large a radius proves that there is
// no better one.

#include "pathfinder/planning/space_survey.hpp"

#include <algorithm>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/covering_link.hpp"
#include "pathfinder/planning/space_building.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

SpaceSurvey::SpaceSurvey(const SearchQuestion& question)
    : state_(question), exploration_(state_), ends_(state_, exploration_), distances_(state_) {}

void SpaceSurvey::begin() {
  ends_.enter();
  survey();
  goAsFarAsTargetsNeed();
}

void SpaceSurvey::survey() {
  while (exploration_.isAnyWaiting() && !state_.isUnfit) {
    exploration_.explore();
    markWhatLeadsToTargets();
    linkWhatIsOfUse();
  }
}

void SpaceSurvey::markWhatLeadsToTargets() {
  for (auto& [text, name] : state_.names) {
    if (!state_.isMentionedByEveryTarget(name)) continue;
    for (const Metamodel* target : name.targets) {
      for (SurveyedVersion* version : name.versions) {
        version->leadsToTarget |= *version->descriptor == *target;
      }
    }
    spreadBackwards(name);
  }
}

void SpaceSurvey::spreadBackwards(SurveyedName& name) const {
  for (bool changed = true; changed;) {
    changed = false;
    // Versions are entered from the sources on, so most are marked in the first round.
    for (std::size_t i = name.versions.size(); i-- > 0;) {
      SurveyedVersion& version = *name.versions[i];
      if (version.leadsToTarget) continue;
      const auto targets = state_.targetsOf(version);
      version.leadsToTarget =
          version.hasUnknownHops ||
          std::any_of(targets.begin(), targets.end(),
                      [](const SurveyedHop& hop) { return hop.target->leadsToTarget; });
      changed |= version.leadsToTarget;
    }
  }
}

/// Links versions that can lie on a path, and enters those that their links bring in.
void SpaceSurvey::linkWhatIsOfUse() {
  // New versions may be added on the way.
  for (std::size_t i = 0; i < state_.versions.size(); ++i) {  // NOLINT(modernize-loop-convert)
    SurveyedVersion& version = state_.versions[i];
    if (!version.isEntered || !state_.isOfUse(version) || version.areLinksEntered) continue;
    link(version);
    version.areLinksEntered = true;
    if (version.linked == nullptr) continue;
    for (const auto& variant : *version.linked) {
      enterLinks(*variant);
    }
    enterRequirements(version);
  }
}

void SpaceSurvey::link(SurveyedVersion& version) {
  checkpoint();
  if (std::exchange(version.isLinkTried, true)) return;
  version.isUnlinkable = !state_.failures.attempt(version, SurveyAttempt::Link, [&] {
    version.linked = &state_.question.host.getLinkedMetamodels(*version.descriptor);
  });
}

void SpaceSurvey::enterLinks(const LinkedMetamodel& variant) {
  const LinkedMetamodel* linking = &variant;
  while (const LinkedMetamodel* covering = coveringLink(*linking)) {
    if (!enterLink(*covering)) return;
    linking = covering;
  }
  for (const auto& [text, linked] : linking->linkedMetamodels) {
    if (text != linking->name) enterLink(*linked);
  }
}

/// What is required matters wherever it is. Where it has to be brought in, any name might do that.
void SpaceSurvey::enterRequirements(SurveyedVersion& version) {
  if (!state_.question.host.hasRequirements()) return;
  version.requirements = &state_.question.host.requirementsOf(*version.descriptor);
  for (const ResolvedRequirement& requirement : *version.requirements) {
    ends_.takeUpLinked(requirement.name);
    if (requirement.isOptional) continue;
    const auto name = state_.names.find(requirement.name);
    if (name == state_.names.end() || !state_.isHeldFromStart(name->second)) ends_.takeAllUp();
  }
}

/// False for one that has been entered before, with all that it links.
bool SpaceSurvey::enterLink(const LinkedMetamodel& linked) {
  if (!linksSeen_.insert(&linked).second) return false;
  ends_.takeUpLinked(linked.name);
  SurveyedName& name = state_.nameOf(linked.name);
  name.isLinked = true;
  if (state_.isHeldFromStart(name)) return true;  // only hops move it
  SurveyedVersion& entry = exploration_.versionOf(name, static_cast<const Metamodel&>(linked));
  entry.isEntry = true;
  exploration_.reach(entry, 0);
  return true;
}

/// Extends names that some target leaves free until they have a version for each target.
void SpaceSurvey::goAsFarAsTargetsNeed() {
  for (bool isExtended = true; std::exchange(isExtended, false) && !state_.isUnfit;) {
    for (auto& [text, name] : state_.names) {
      if (exploration_.frontier(name) == SurveyedVersion::unreached) continue;
      for (std::size_t target = 0; target < state_.targets.size(); ++target) {
        if (!state_.targets[target].isPossible || distances_.distanceFor(name, target)) continue;
        isExtended |= exploration_.goTo(name, exploration_.frontier(name));
        break;
      }
    }
    survey();
  }
}

bool SpaceSurvey::goAllTo(std::uint64_t radius) {
  const std::size_t before = exploration_.findings();
  for (auto& [text, name] : state_.names) exploration_.goTo(name, radius);
  survey();
  return exploration_.findings() > before;
}

bool SpaceSurvey::isOver() const {
  return std::all_of(state_.names.begin(), state_.names.end(), [this](const auto& entry) {
    return exploration_.frontier(entry.second) == SurveyedVersion::unreached;
  });
}

bool SpaceSurvey::extendToCover(std::uint64_t total) {
  if (isOver()) return false;
  const std::uint64_t least = distances_.leastTotal();
  const std::uint64_t slack = total > least ? total - least : 0;
  const std::size_t before = exploration_.findings();
  for (auto& [text, name] : state_.names) {
    if (exploration_.frontier(name) != SurveyedVersion::unreached)
      exploration_.goTo(name, distances_.radiusFor(name, slack));
  }
  survey();
  return exploration_.findings() > before;
}

bool SpaceSurvey::extend() {
  if (isOver()) return false;
  // A search that tried everything would by then have gone that far with each name alone.
  const std::uint64_t least = distances_.leastTotal();
  const std::uint64_t near = least == SurveyedVersion::unreached ? 1 : ordinaryPart(least) / 2 + 1;
  for (; extensions_ < 3; ++extensions_) {
    const std::uint64_t radii[] = {near, expensiveHopWeight - 1, SurveyedVersion::unreached - 1};
    if (goAllTo(radii[extensions_])) return true;
  }
  return false;
}

void SpaceSurvey::surveyEverything() {
  state_.isEverythingOfUse = true;
  ends_.takeAllUp();
  do {
    linkWhatIsOfUse();
  } while (goAllTo(SurveyedVersion::unreached - 1) && !state_.isUnfit);
}

std::unique_ptr<const SearchSpace> SpaceSurvey::makeSpace(Failed failed) {
  for (SurveyedVersion& version : state_.versions) version.isAssumedBest = false;
  if (failed == Failed::AssumedBest) state_.failures.assumeBest();
  return buildSearchSpace(state_);
}

}  // namespace tarn::evolution::pathfinder
