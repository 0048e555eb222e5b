// Three rounds that are repeated until nothing changes: exploration of each name by itself over
// hops that do not go against the direction, from the source's versions and from those that may be
// brought in; of a name that the target fixes, a mark on what leads to its version; and of all that
// is kept, what it depends on, which of names that may be absent brings versions in. Where ends are
// open, all is kept, and nothing brought in.

#include "pathfinder/learning/dependency_survey.hpp"

#include <algorithm>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

DependencySurvey::DependencySurvey(SelectionHost& host, DependencyFailures& failures,
                                   const Question& question)
    : host_(host), failures_(failures), question_(question) {
  addNames();
  while (explore()) {
    for (auto& [text, name] : names) keepWhatLeadsToEnd(name);
    bringIn();
  }
}

void DependencySurvey::addNames() {
  for (const auto& [text, known] : question_.source.names()) {
    Name& name = names[text];
    name.isCertain = known.isCertain;
    if (areEndsOpen() && !name.isCertain) throw NotForDependencies();
    name.starts = known.versions.size();
    for (const auto& version : known.versions) addVersion(name, Metamodel(version.descriptor));
    isOpen |= !name.isCertain || known.versions.size() > 1;
  }
  for (const auto& [text, goal] : question_.goals) {
    const auto name = names.find(text);
    if (name == names.end()) throw NotForDependencies();
    name->second.goal = &goal;
  }
  if (areEndsOpen()) return;
  for (const auto& [text, known] : question_.target->names()) {
    if (known.isSelected) names[text].goal = &known.versions.front().descriptor;
  }
}

std::size_t DependencySurvey::addVersion(Name& name, Metamodel&& descriptor) {
  const auto [begin, end] = name.places.equal_range(descriptor.version);
  const auto known = std::find_if(begin, end, [&](const auto& entry) {
    return *name.versions[entry.second].descriptor == descriptor;
  });
  if (known != end) return known->second;
  const Metamodel& kept = descriptors.emplace_back(std::move(descriptor));
  name.places.emplace(kept.version, name.versions.size());
  name.versions.push_back({&kept});
  return name.versions.size() - 1;
}

bool DependencySurvey::explore() {
  bool anyNew = false;
  for (auto& [text, name] : names) {
    for (std::size_t i = 0; i < name.versions.size(); ++i) {
      if (std::exchange(name.versions[i].isExplored, true)) continue;
      anyNew = true;
      checkpoint();
      follow(text, name, i);
    }
  }
  return anyNew;
}

void DependencySurvey::follow(const std::u16string& text, Name& name, std::size_t place) {
  const Metamodel& from = *name.versions[place].descriptor;
  std::vector<Offered> offered;
  const bool areKnown = failures_.attempt(from, DependencyFailures::Attempt::Hops,
                                          [&] { offered = hopsFrom(text, from); });
  name.versions[place].hasUnknownHops = !areKnown && failures_.isBestAssumed();
  if (!areKnown) return;
  for (auto& [hop, target, isOpposite] : offered) {
    // What such a hop leads to is looked up under the name that it moves.
    if (hop.name != text) throw NotForDependencies();
    if (target && target->name != text) throw NotForDependencies();
    // A fault of the application's, which a plain search reports.
    if (!target && question_.direction != Direction::Unknown) throw NotForDependencies();
    if (isOpposite) continue;
    if (target) {
      const std::size_t to = addVersion(name, *std::move(target));
      Version& version = name.versions[place];
      version.targets.push_back({static_cast<std::uint32_t>(version.hops.size()), to});
    }
    name.versions[place].hops.push_back(std::move(hop));
  }
}

std::vector<DependencySurvey::Offered> DependencySurvey::hopsFrom(const std::u16string& text,
                                                                  const Metamodel& from) {
  std::vector<Hop> hops;
  host_.findHops(text, from.version, hops);
  std::vector<Offered> result;
  for (Hop& hop : hops) {
    auto target = host_.getMetamodel(hop.name, hop.to);
    const bool isCompared = target && hop.name == text && target->name == text &&
                            question_.direction != Direction::Unknown;
    const bool isOpposite =
        isCompared && areOpposite(question_.direction, host_.directionBetween(from, *target));
    result.push_back({std::move(hop), std::move(target), isOpposite});
  }
  return result;
}

void DependencySurvey::keepWhatLeadsToEnd(Name& name) const {
  const bool areAllKept = areEndsOpen() || name.goal == nullptr;
  for (Version& version : name.versions) {
    version.isKept |= areAllKept || version.hasUnknownHops || *version.descriptor == *name.goal;
  }
  for (bool changed = true; std::exchange(changed, false);) {
    for (std::size_t i = name.versions.size(); i-- > 0;) {
      Version& version = name.versions[i];
      if (version.isKept) continue;
      version.isKept =
          std::any_of(version.targets.begin(), version.targets.end(),
                      [&](const Hopped& hop) { return name.versions[hop.target].isKept; });
      changed |= version.isKept;
    }
  }
}

void DependencySurvey::bringIn() {
  std::vector<Version*> asked;
  for (auto& [text, name] : names) {
    for (Version& version : name.versions) {
      if (version.isKept && !version.areNeedsKnown) asked.push_back(&version);
    }
  }
  for (Version* version : asked) bringIn(*version);
}

void DependencySurvey::bringIn(Version& version) {
  checkpoint();
  version.areNeedsKnown = true;
  std::vector<const Dependency*> needed = dependenciesInLinkingOrder(*version.descriptor);
  if (areEndsOpen()) {
    const auto isLeftOut = [this](const Dependency* need) { return !names.contains(need->name); };
    isClosed &= std::erase_if(needed, isLeftOut) == 0;
  }
  std::vector<std::vector<Metamodel>> candidates(needed.size());
  const bool areKnown =
      failures_.attempt(*version.descriptor, DependencyFailures::Attempt::Needs, [&] {
        for (std::size_t i = 0; i < needed.size(); ++i) {
          host_.findMetamodels(needed[i]->name, needed[i]->range, candidates[i]);
        }
        version.peers = peersOf(*version.descriptor);
      });
  version.isLost = !areKnown && !failures_.isBestAssumed();
  if (!areKnown) return;
  for (std::size_t i = 0; i < needed.size(); ++i) {
    addNeed(version, needed[i]->name, std::move(candidates[i]));
  }
}

void DependencySurvey::addNeed(Version& version, const std::u16string& name,
                               std::vector<Metamodel>&& candidates) {
  Need& need = version.needs.emplace_back(Need{&names[name]});
  if (need.name->isCertain) {
    need.candidates = std::move(candidates);
    return;
  }
  for (Metamodel& candidate : candidates) {
    if (candidate.name != name) throw NotForDependencies();
    need.admitted.push_back(addVersion(*need.name, std::move(candidate)));
    need.name->versions[need.admitted.back()].isEntry = true;
  }
}

std::vector<DependencySurvey::Peer> DependencySurvey::peersOf(const Metamodel& metamodel) {
  required_.clear();
  host_.findRequirements(metamodel, required_);
  std::vector<Peer> result;
  for (PeerRequirement& requirement : required_) {
    Peer& peer = result.emplace_back(Peer{std::move(requirement.name), requirement.isOptional});
    host_.findMetamodels(peer.name, requirement.range, peer.admitted);
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
