// Uniform-cost exploration of each name by itself, from what the sources hold on, in three rounds
// that are repeated until nothing changes: ask for hops; mark, backwards, what leads to a target;
// link what a path may hold, and enter what its links may bring in.
//
// Names that a target leaves free have a radius, beyond which they are not explored; so have, of
// the others, versions from which the direction asked for leads away from what the targets hold. It
// starts with the least distance at which a version of the name can stand beside each target. A
// plan that uses a version further away by d costs at least d more than the least that the targets
// need together; so when a plan is found, its total tells how large a radius proves that there is
// no better one.
//
// Whatever the application throws of a version is noted with the version, which is left out.

#include "pathfinder/planning/space_survey.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/covering_link.hpp"
#include "pathfinder/planning/space_building.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint64_t unreached = SurveyedVersion::unreached;

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

bool isFarther(const std::pair<std::uint64_t, SurveyedVersion*>& left,
               const std::pair<std::uint64_t, SurveyedVersion*>& right) {
  return left.first > right.first;
}

bool holdsLinksOf(const VersionBaseline& baseline, const LinkedMetamodel& linked) {
  if (linked.linkedMetamodels.empty()) return true;
  const auto holds = [&](const LinkedMetamodel& link) {
    const auto held = baseline.metamodels.find(link.name);
    return held != baseline.metamodels.end() && held->second.get() == &link;
  };
  // The covering link is asked for its own.
  if (const LinkedMetamodel* covering = coveringLink(linked)) return holds(*covering);
  return std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(),
                     [&](const auto& link) { return holds(*link.second); });
}

/// Whether one linked metamodel links another that links another version of the first one's name.
/// That version stands back.
bool bringsInAgainstItself(const LinkedMetamodel& linking, const LinkedMetamodel& linked) {
  const auto& links = linking.linkedMetamodels;
  const auto link = links.find(linked.name);
  return link != links.end() && link->second.get() == &linked && links.contains(linking.name);
}

}  // namespace

SpaceSurvey::SpaceSurvey(const SearchQuestion& question)
    : question_(question),
      state_(question.sources.size(), question.targets.size()),
      irrelevant_(question, &state_.memory) {
  irrelevant_.find();
}

void SpaceSurvey::begin() {
  enterTargets();
  noteKnownAnswers();
  enterSources();
  if (!isUnfit_ && (mayNeedToBringIn() || mayLinkAnew())) takeAllUp();
  survey();
  goAsFarAsTargetsNeed();
}

// Versions.

SurveyedVersion* SpaceSurvey::known(const SurveyedName& name, const Metamodel& descriptor) const {
  return name.known.find(descriptor.version, [&](const SurveyedVersion& version) {
    return version.descriptor == &descriptor || *version.descriptor == descriptor;
  });
}

/// The version of a descriptor that lasts as long as the survey.
SurveyedVersion& SpaceSurvey::versionOf(SurveyedName& name, const Metamodel& descriptor) {
  SurveyedVersion* version = known(name, descriptor);
  return version != nullptr ? *version : addVersion(name, descriptor);
}

SurveyedVersion& SpaceSurvey::versionOf(SurveyedName& name, Metamodel&& descriptor) {
  SurveyedVersion* version = known(name, descriptor);
  if (version != nullptr) return *version;
  return addVersion(name, state_.descriptors.emplace_back(std::move(descriptor)));
}

SurveyedVersion& SpaceSurvey::addVersion(SurveyedName& name, const Metamodel& descriptor) {
  SurveyedVersion& version = state_.versions.emplace_back(name, descriptor);
  name.known.add(version);
  return version;
}

// What the question holds.

void SpaceSurvey::enterTargets() {
  for (std::size_t i = 0; i < question_.targets.size(); ++i) {
    const auto& metamodels = question_.targets[i].metamodels;
    state_.targets[i].entries.reserve(metamodels.size());
    for (const auto& [name, linked] : metamodels) {
      if (linked == nullptr) {
        state_.targets[i].absent.push_back(&state_.nameOf(name));
      } else if (linked->name != name || !irrelevant_.contain(*linked)) {
        enterTarget(i, name, *linked);
      }
    }
  }
}

void SpaceSurvey::enterTarget(std::size_t target, const std::u16string& key,
                              const LinkedMetamodel& linked) {
  state_.targets[target].isPossible &= linked.name == key;  // baselines hold no others
  SurveyedName& name = state_.nameOf(key);
  name.targets.push_back(&linked);
  state_.targets[target].entries.push_back({&name, &linked});
  if (!holdsLinksOf(question_.targets[target], linked)) closeTarget(target, linked);
}

/// What holds a linked metamodel holds all that it links.
void SpaceSurvey::closeTarget(std::size_t target, const LinkedMetamodel& linked) {
  SurveyedTarget& surveyed = state_.targets[target];
  for (const auto& [key, link] : linked.linkedMetamodels) {
    if (key == linked.name) continue;
    const LinkedMetamodel* held = heldBy(target, key);
    if (held == link.get() || (held != nullptr && bringsInAgainstItself(*held, linked))) continue;
    const bool isMentioned = held != nullptr || question_.targets[target].metamodels.contains(key);
    surveyed.isPossible &= !isMentioned;
    if (isMentioned) continue;
    SurveyedName& name = state_.nameOf(key);
    name.targets.push_back(link.get());
    surveyed.entries.push_back({&name, link.get()});
    surveyed.added.emplace(key, link.get());
  }
}

const LinkedMetamodel* SpaceSurvey::heldBy(std::size_t target, const std::u16string& name) const {
  const auto& metamodels = question_.targets[target].metamodels;
  if (const auto held = metamodels.find(name); held != metamodels.end()) return held->second.get();
  const auto& added = state_.targets[target].added;
  const auto held = added.find(name);
  return held == added.end() ? nullptr : held->second;
}

void SpaceSurvey::noteKnownAnswers() {
  for (const KnownMetamodel& known : question_.known) {
    if (irrelevant_.contain(*known.linked->front())) continue;
    if (known.metamodel->name != *known.name) continue;  // found out if a hop leads there
    SurveyedName& name = state_.nameOf(*known.name);
    SurveyedVersion& version = versionOf(name, *known.metamodel);
    version.linked = known.linked;
    version.isLinkTried = true;
    noteAnswer(name, *known.version, &version);
  }
}

void SpaceSurvey::enterSources() {
  for (std::size_t i = 0; i < question_.sources.size(); ++i) {
    const auto& metamodels = question_.sources[i].metamodels;
    state_.sources[i].entries.reserve(metamodels.size());
    for (const auto& [name, linked] : metamodels) {
      isUnfit_ |= linked == nullptr || linked->name != name;
      if (isUnfit_) return;
      if (state_.firstName == nullptr || name < *state_.firstName) state_.firstName = &name;
      if (!irrelevant_.contain(*linked)) enterSource(i, name, *linked);
    }
  }
}

void SpaceSurvey::enterSource(std::size_t source, const std::u16string& key,
                              const LinkedMetamodel& linked) {
  SurveyedName& name = state_.nameOf(key);
  ++name.sources;
  SurveyedSource& surveyed = state_.sources[source];
  surveyed.entries.push_back({&name, &linked});
  SurveyedVersion& version = versionOf(name, static_cast<const Metamodel&>(linked));
  reach(version, 0);
  if (!std::exchange(version.isLinkTried, true)) {
    // Every step from here tries to hold it, but for those that move it.
    version.linked = &question_.host.getLinkedMetamodels(linked);
  }
  surveyed.isRegular &= isOwn(version, linked) && holdsLinksOf(question_.sources[source], linked);
}

/// Whether the linked metamodel is of the repository's own making.
bool SpaceSurvey::isOwn(const SurveyedVersion& version, const LinkedMetamodel& linked) const {
  return version.linked != nullptr &&
         std::any_of(version.linked->begin(), version.linked->end(),
                     [&](const auto& variant) { return variant.get() == &linked; });
}

/// Whether some target mentions a name that some source does not hold.
bool SpaceSurvey::mayNeedToBringIn() const {
  return std::any_of(
      state_.targets.begin(), state_.targets.end(), [this](const SurveyedTarget& target) {
        return std::any_of(
            target.entries.begin(), target.entries.end(),
            [this](const SurveyedEntry& entry) { return !state_.isHeldFromStart(*entry.name); });
      });
}

/// Whether some first step links everything anew, whatever it moves.
bool SpaceSurvey::mayLinkAnew() const {
  return std::any_of(state_.sources.begin(), state_.sources.end(),
                     [](const SurveyedSource& source) { return !source.isRegular; });
}

/// Takes a name up that is relevant after all.
void SpaceSurvey::takeUp(const std::u16string& name, const LinkedMetamodel& linked) {
  irrelevant_.remove(linked);
  for (std::size_t i = 0; i < question_.targets.size(); ++i) {
    if (question_.targets[i].metamodels.contains(name)) enterTarget(i, name, linked);
  }
  for (std::size_t i = 0; i < question_.sources.size(); ++i) enterSource(i, name, linked);
}

void SpaceSurvey::takeAllUp() {
  if (irrelevant_.empty()) return;
  for (const auto& [name, linked] : question_.sources.front().metamodels) {
    if (irrelevant_.contain(*linked)) takeUp(name, *linked);
  }
}

// Exploration.

void SpaceSurvey::survey() {
  while (!waiting_.empty() && !isUnfit_) {
    while (!waiting_.empty()) {
      SurveyedName& name = *waiting_.back();
      waiting_.pop_back();
      explore(name);
    }
    markWhatLeadsToTargets();
    linkWhatIsOfUse();
  }
}

/// Runs an action that asks the application of a version; false when it failed, which is noted.
template <class Action>
bool SpaceSurvey::attempt(SurveyedVersion& version, SurveyAttempt what, const Action& action) {
  try {
    action();
    return true;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const SearchStopped&) {
    throw;
  } catch (const LinkingBudget::Spent&) {
    throw;
  } catch (const Conflict&) {
    state_.failures.push_back({&version, what, std::current_exception(), true});
  } catch (...) {
    state_.failures.push_back({&version, what, std::current_exception(), false});
  }
  return false;
}

/// A version can be held, by itself, after hops of that weight.
void SpaceSurvey::reach(SurveyedVersion& version, std::uint64_t distance) {
  if (distance >= version.distance) return;
  version.distance = distance;
  wait(version);
}

void SpaceSurvey::wait(SurveyedVersion& version) {
  auto& waiting = version.name->waiting;
  if (waiting.empty()) waiting_.push_back(version.name);
  waiting.emplace_back(version.distance, &version);
  std::push_heap(waiting.begin(), waiting.end(), isFarther);
}

void SpaceSurvey::explore(SurveyedName& name) {
  while (!name.waiting.empty()) {
    const auto [distance, version] = name.waiting.front();
    std::pop_heap(name.waiting.begin(), name.waiting.end(), isFarther);
    name.waiting.pop_back();
    if (distance == version->distance) explore(*version);
  }
}

void SpaceSurvey::explore(SurveyedVersion& version) {
  SurveyedName& name = *version.name;
  const std::uint64_t radius = leadsToTargets(version) ? unreached : name.radius;
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

void SpaceSurvey::askForHops(SurveyedVersion& version) {
  checkpoint();
  version.isAsked = true;
  ++findings_;
  hops_.clear();
  const bool areKnown = attempt(version, SurveyAttempt::AskForHops, [&] {
    question_.host.findHops(*version.name->text, version.descriptor->version, hops_);
  });
  if (!areKnown) {
    noteUnknownHops(version);
    return;
  }
  version.firstTarget = state_.hopTargets.size();
  state_.hops.begin(hops_.size());
  for (Hop& hop : hops_) {
    const auto keep = [&] { keepHop(version, hop); };
    if (!attempt(version, SurveyAttempt::AskForHops, keep)) noteUnknownHops(version);
  }
  version.hops = state_.hops.last();
}

/// Some hop might lead anywhere, above all to what a target holds.
void SpaceSurvey::noteUnknownHops(SurveyedVersion& version) {
  SurveyedName& name = *version.name;
  version.hasUnknownHops = true;
  for (const Metamodel* target : name.targets) {
    reach(versionOf(name, *target), version.distance + hopWeight(false));
  }
}

/// Keeps a hop of a version unless it goes against the direction.
void SpaceSurvey::keepHop(SurveyedVersion& version, Hop& hop) {
  // Hop collection looks the target up under the hop's own name, which may differ from the key.
  SurveyedName& name = *version.name;
  const bool hasOwnName = hop.name == *name.text;
  SurveyedVersion* target = hasOwnName ? lookUp(name, hop.to) : nullptr;
  if (question_.direction != Direction::Unknown) {
    std::optional<Metamodel> other;
    if (!hasOwnName) other = question_.host.getMetamodel(hop.name, hop.to);
    if (target == nullptr && !other) {
      version.losesHop = true;
      return;
    }
    if (goesAgainstDirection(version, target != nullptr ? *target->descriptor : *other)) return;
  }
  if (!hasOwnName) target = lookUp(name, hop.to);
  if (target != nullptr) {
    state_.hopTargets.push_back({static_cast<std::uint32_t>(state_.hops.last().size()), target});
    ++version.targetCount;
  }
  state_.hops.add(std::move(hop));
}

void SpaceSurvey::followHops(const SurveyedVersion& version) {
  for (std::size_t i = 0; i < version.targetCount; ++i) {
    const auto [place, target] = state_.hopTargets[version.firstTarget + i];
    reach(*target, version.distance + hopWeight(version.hops[place].expensive));
  }
}

bool SpaceSurvey::goesAgainstDirection(const SurveyedVersion& version,
                                       const Metamodel& target) const {
  return areOpposite(question_.direction,
                     question_.host.directionBetween(*version.descriptor, target));
}

/// The version that a hop of this name leads to; null when the application has none.
SurveyedVersion* SpaceSurvey::lookUp(SurveyedName& name, const VersionId& number) {
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

SurveyedVersion* SpaceSurvey::ask(SurveyedName& name, const VersionId& number) {
  std::optional<Metamodel> found = question_.host.getMetamodel(*name.text, number);
  if (!found) return nullptr;
  if (found->name == *name.text) return &versionOf(name, *std::move(found));
  isUnfit_ = true;
  return nullptr;
}

void SpaceSurvey::noteAnswer(SurveyedName& name, const VersionId& number,
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
bool SpaceSurvey::leadsToTargets(SurveyedVersion& version) {
  const SurveyedName& name = *version.name;
  if (!state_.isMentionedByEveryTarget(name)) return false;
  if (version.distance == 0 || question_.direction == Direction::Unknown) return true;
  if (!version.mayLeadToTargets) {
    version.mayLeadToTargets = true;
    attempt(version, SurveyAttempt::Compare, [&] {
      version.mayLeadToTargets = !std::all_of(
          name.targets.begin(), name.targets.end(),
          [&](const Metamodel* target) { return goesAgainstDirection(version, *target); });
    });
  }
  return *version.mayLeadToTargets;
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
  }
}

void SpaceSurvey::link(SurveyedVersion& version) {
  checkpoint();
  if (std::exchange(version.isLinkTried, true)) return;
  version.isUnlinkable = !attempt(version, SurveyAttempt::Link, [&] {
    version.linked = &question_.host.getLinkedMetamodels(*version.descriptor);
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

/// False for one that has been entered before, with all that it links.
bool SpaceSurvey::enterLink(const LinkedMetamodel& linked) {
  if (!linksSeen_.insert(&linked).second) return false;
  if (const auto* irrelevant = irrelevant_.find(linked.name)) {
    takeUp(irrelevant->first, *irrelevant->second);
  }
  SurveyedName& name = state_.nameOf(linked.name);
  name.isLinked = true;
  if (state_.isHeldFromStart(name)) return true;  // only hops move it
  SurveyedVersion& entry = versionOf(name, static_cast<const Metamodel&>(linked));
  entry.isEntry = true;
  reach(entry, 0);
  return true;
}

// How far.

/// Extends names that some target leaves free until they have a version for each target.
void SpaceSurvey::goAsFarAsTargetsNeed() {
  for (bool isExtended = true; std::exchange(isExtended, false) && !isUnfit_;) {
    for (auto& [text, name] : state_.names) {
      if (frontier(name) == unreached) continue;
      for (std::size_t target = 0; target < state_.targets.size(); ++target) {
        if (!state_.targets[target].isPossible || distanceFor(name, target)) continue;
        isExtended |= goTo(name, frontier(name));
        break;
      }
    }
    survey();
  }
}

/// The least distance of a version of the name with which a plan can end at a target, as far as
/// that is surveyed; no value when there is none. Of a name that can be brought in, who knows what
/// may still do that.
std::optional<std::uint64_t> SpaceSurvey::distanceFor(const SurveyedName& name,
                                                      std::size_t target) const {
  if (!state_.isHeldFromStart(name)) return 0;
  std::optional<std::uint64_t> least;
  for (const SurveyedVersion* version : name.versions) {
    if (least && *least <= version->distance) continue;
    if (suits(*version, target)) least = version->distance;
  }
  return least;
}

/// Whether a plan that ends with this version may end at a target.
bool SpaceSurvey::suits(const SurveyedVersion& version, std::size_t target) const {
  const LinkedMetamodel* wanted = heldBy(target, *version.name->text);
  if (wanted != nullptr) return *version.descriptor == static_cast<const Metamodel&>(*wanted);
  if (version.linked == nullptr) return version.isUnlinkable;
  return std::any_of(version.linked->begin(), version.linked->end(),
                     [&](const auto& variant) { return agrees(*variant, target); });
}

bool SpaceSurvey::agrees(const LinkedMetamodel& variant, std::size_t target) const {
  return std::all_of(variant.linkedMetamodels.begin(), variant.linkedMetamodels.end(),
                     [&](const auto& link) {
                       const LinkedMetamodel* held = heldBy(target, link.first);
                       return held == nullptr || held == link.second.get();
                     });
}

/// The least distance at which versions of the name may be found that have not been entered.
std::uint64_t SpaceSurvey::frontier(const SurveyedName& name) const {
  std::uint64_t least = unreached;
  for (const SurveyedVersion* version : name.beyond) {
    const std::uint64_t next = version->isEntered ? hopWeight(false) : 0;
    least = std::min(least, version->distance + next);
  }
  return least;
}

/// Lets a name be explored up to a radius; false when that changes nothing.
bool SpaceSurvey::goTo(SurveyedName& name, std::uint64_t radius) {
  if (frontier(name) > radius) return false;
  name.radius = radius;
  for (SurveyedVersion* version : name.beyond) wait(*version);
  name.beyond.clear();
  return true;
}

bool SpaceSurvey::goAllTo(std::uint64_t radius) {
  const std::size_t before = findings_;
  for (auto& [text, name] : state_.names) goTo(name, radius);
  survey();
  return findings_ > before;
}

/// The least total that a plan can have, by the least distance of each name and the steps that
/// these take.
std::uint64_t SpaceSurvey::leastTotal() const {
  std::uint64_t least = unreached;
  for (std::size_t target = 0; target < state_.targets.size(); ++target) {
    std::uint64_t hops = 0;
    std::uint64_t steps = 0;
    bool isWithinReach = state_.targets[target].isPossible;
    for (const auto& [text, name] : state_.names) {
      if (name.versions.empty()) continue;
      const auto distance = distanceFor(name, target);
      isWithinReach &= distance.has_value();
      if (!isWithinReach) break;
      hops += *distance;
      steps = std::max(steps, ordinaryPart(*distance));
    }
    if (isWithinReach) least = std::min(least, hops + steps);
  }
  return least;
}

/// How far a name has to be surveyed when a plan may cost so much more than the least.
std::uint64_t SpaceSurvey::radiusFor(const SurveyedName& name, std::uint64_t slack) const {
  std::uint64_t farthest = 0;
  for (std::size_t target = 0; target < state_.targets.size(); ++target) {
    farthest = std::max(farthest, distanceFor(name, target).value_or(0));
  }
  return farthest + slack;
}

bool SpaceSurvey::isOver() const {
  return std::all_of(state_.names.begin(), state_.names.end(),
                     [this](const auto& entry) { return frontier(entry.second) == unreached; });
}

bool SpaceSurvey::extendToCover(std::uint64_t total) {
  if (isOver()) return false;
  const std::uint64_t least = leastTotal();
  const std::uint64_t slack = total > least ? total - least : 0;
  const std::size_t before = findings_;
  for (auto& [text, name] : state_.names) {
    if (frontier(name) != unreached) goTo(name, radiusFor(name, slack));
  }
  survey();
  return findings_ > before;
}

bool SpaceSurvey::extend() {
  if (isOver()) return false;
  // A search that tried everything would by then have gone that far with each name alone.
  const std::uint64_t least = leastTotal();
  const std::uint64_t near = least == unreached ? 1 : ordinaryPart(least) / 2 + 1;
  for (; extensions_ < 3; ++extensions_) {
    const std::uint64_t radii[] = {near, expensiveHopWeight - 1, unreached - 1};
    if (goAllTo(radii[extensions_])) return true;
  }
  return false;
}

void SpaceSurvey::surveyEverything() {
  state_.isEverythingOfUse = true;
  takeAllUp();
  do {
    linkWhatIsOfUse();
  } while (goAllTo(unreached - 1) && !isUnfit_);
}

std::unique_ptr<const SearchSpace> SpaceSurvey::makeSpace(Failed failed) {
  for (SurveyedVersion& version : state_.versions) version.isAssumedBest = false;
  for (const SurveyFailure& failure : state_.failures) {
    failure.version->isAssumedBest |= isAssumedBest(failure, failed);
  }
  return buildSearchSpace(state_);
}

bool SpaceSurvey::isAssumedBest(const SurveyFailure& failure, Failed failed) {
  return failed == Failed::AssumedBest && !failure.isConflict;
}

bool SpaceSurvey::anyFailed(Failed failed) const {
  return std::any_of(state_.failures.begin(), state_.failures.end(),
                     [&](const SurveyFailure& failure) { return isAssumedBest(failure, failed); });
}

void SpaceSurvey::throwFailureOf(const std::vector<VersionIndex>& versions) const {
  for (const SurveyFailure& failure : state_.failures) {
    const bool isAsked =
        failure.version->isAssumedBest &&
        std::find(versions.begin(), versions.end(), failure.version->index) != versions.end();
    if (isAsked) std::rethrow_exception(failure.exception);
  }
}

std::vector<SurveyedFault> SpaceSurvey::faults() const {
  std::unordered_map<const SurveyedVersion*, std::exception_ptr> unlinkable;
  std::vector<SurveyedFault> result;
  for (const SurveyFailure& failure : state_.failures) {
    if (failure.attempt == SurveyAttempt::Link) {
      unlinkable.emplace(failure.version, failure.exception);
    } else if (failure.attempt == SurveyAttempt::AskForHops) {
      result.push_back({failure.version, failure.exception});
    }
  }
  for (const SurveyedVersion& version : state_.versions) {
    if (version.losesHop) result.push_back({&version, nullptr});
    if (unlinkable.empty()) continue;
    for (const SurveyedHop& hop : state_.targetsOf(version)) {
      const auto failure = unlinkable.find(hop.target);
      if (failure != unlinkable.end()) result.push_back({&version, failure->second});
    }
  }
  std::erase_if(result,
                [](const SurveyedFault& fault) { return fault.holding->linked == nullptr; });
  std::stable_sort(result.begin(), result.end(), [](const auto& left, const auto& right) {
    return left.holding->distance < right.holding->distance;
  });
  return result;
}

}  // namespace tarn::evolution::pathfinder
