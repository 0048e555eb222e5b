// Three rounds that are repeated until nothing changes: exploration of each name by itself over
// hops that do not go against the direction, from the source's versions and from those that may be
// brought in; of a name that the target fixes, a mark on what leads to its version; and of all that
// is kept, what it depends on, which of names that may be absent brings versions in. In the end
// each dependency becomes a requirement, beside those that the application has by itself. Where
// ends are open, all is kept, and nothing brought in.
//
// Where the best is assumed of hops that are not known, a version of its own stands for all that
// they lead to: it can stand beside anything, so nothing is gained by leaving it but for the
// target's version.

#include "pathfinder/learning/dependency_space.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

class DependencySurvey {
 public:
  DependencySurvey(SelectionHost& host, DependencyFailures& failures, DependencySpace& result)
      : host_(host), failures_(failures), result_(result) {}

  using Baseline = std::map<std::u16string, const Metamodel*>;

  void run(const Baseline& source) {
    if (!areEndsOpen()) {
      const auto target = result_.target_->firstBaseline();
      if (!target) return;
      result_.direction = directionBetween(source, *target);
    }
    result_.hasEnds_ = true;
    addNames();
    while (explore()) {
      for (auto& [text, name] : names_) keepWhatLeadsToEnd(name);
      bringIn();
    }
    addVersions();
    addMoves();
    addRequirements();
    addStarts();
    addSources();
    addTarget();
  }

 private:
  bool areEndsOpen() const { return !result_.target_; }

  struct Hopped {
    std::uint32_t place;
    std::size_t target;
  };

  struct Name;

  /// What a version depends on, and the versions that it admits, by their places, in the
  /// application's order.
  struct Need {
    Name* name;
    std::vector<std::size_t> admitted = {};
    std::vector<Metamodel> candidates = {};  // of a name that is held from the start
  };

  /// What has to stand beside a version, if its name is there.
  struct Peer {
    std::u16string name;
    bool isOptional;
    std::vector<Metamodel> admitted = {};
  };

  struct Version {
    const Metamodel* descriptor;
    std::vector<Hop> hops = {};        // that do not go against the direction
    std::vector<Hopped> targets = {};  // of those that lead to a version
    std::vector<Need> needs = {};      // in the order of linking
    std::vector<Peer> peers = {};
    bool isExplored = false;
    bool hasUnknownHops = false;
    bool isKept = false;
    bool areNeedsKnown = false;
    bool isLost = false;   // for what it needs is not known, and the best not assumed
    bool isEntry = false;  // whether it can be brought in
    VersionIndex index = SearchSpace::none;
  };

  struct Name {
    bool isCertain = false;  // whether the source holds it, whatever it brings in
    std::size_t starts = 0;  // how many of the versions the source may hold
    const Metamodel* goal = nullptr;
    std::deque<Version> versions = {};  // the source's first
    std::unordered_multimap<VersionId, std::size_t, std::hash<VersionId>> places = {};
    NameIndex index = 0;
    VersionIndex unknown = SearchSpace::none;  // stands for what unknown hops may lead to
  };

  void addNames() {
    for (const auto& [text, versions] : result_.source_.names()) {
      Name& name = names_[text];
      name.isCertain = result_.source_.isCertain(text);
      if (areEndsOpen() && !name.isCertain) throw NotForDependencies();
      name.starts = versions.size();
      for (const auto& version : versions) addVersion(name, Metamodel(version.descriptor));
      result_.isOpen_ |= !name.isCertain || versions.size() > 1;
    }
    for (const auto& [text, goal] : result_.goals_) {
      const auto name = names_.find(text);
      if (name == names_.end()) throw NotForDependencies();
      name->second.goal = &goal;
    }
    if (areEndsOpen()) return;
    for (const auto& [text, versions] : result_.target_->names()) {
      if (result_.target_->isSelected(text)) names_[text].goal = &versions.front().descriptor;
    }
  }

  /// As `VersionRepository::computeDirection` has it.
  Direction directionBetween(const Baseline& source, const Baseline& target) {
    Direction result = Direction::Unknown;
    for (const auto& [name, after] : target) {
      const auto before = source.find(name);
      if (before == source.end()) continue;
      const Direction direction = host_.directionBetween(*before->second, *after);
      if (direction == Direction::Equal || direction == Direction::Unknown) continue;
      if (areOpposite(result, direction)) return Direction::Unknown;
      result = direction;
    }
    return result;
  }

  /// The place of the version among those of its name, where it is added if it is new.
  std::size_t addVersion(Name& name, Metamodel&& descriptor) {
    const auto [begin, end] = name.places.equal_range(descriptor.version);
    const auto known = std::find_if(begin, end, [&](const auto& entry) {
      return *name.versions[entry.second].descriptor == descriptor;
    });
    if (known != end) return known->second;
    const Metamodel& kept = result_.descriptors.emplace_back(std::move(descriptor));
    name.places.emplace(kept.version, name.versions.size());
    name.versions.push_back({&kept});
    return name.versions.size() - 1;
  }

  /// Asks for the hops of versions that have come; false when there are none.
  bool explore() {
    bool anyNew = false;
    for (auto& [text, name] : names_) {
      for (std::size_t i = 0; i < name.versions.size(); ++i) {
        if (std::exchange(name.versions[i].isExplored, true)) continue;
        anyNew = true;
        checkpoint();
        follow(text, name, i);
      }
    }
    return anyNew;
  }

  /// A hop as the application tells of it.
  struct Offered {
    Hop hop;
    std::optional<Metamodel> target;
    bool isOpposite = false;
  };

  void follow(const std::u16string& text, Name& name, std::size_t place) {
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
      if (!target && result_.direction != Direction::Unknown) throw NotForDependencies();
      if (isOpposite) continue;
      if (target) {
        const std::size_t to = addVersion(name, *std::move(target));
        Version& version = name.versions[place];
        version.targets.push_back({static_cast<std::uint32_t>(version.hops.size()), to});
      }
      name.versions[place].hops.push_back(std::move(hop));
    }
  }

  std::vector<Offered> hopsFrom(const std::u16string& text, const Metamodel& from) {
    std::vector<Hop> hops;
    host_.findHops(text, from.version, hops);
    std::vector<Offered> result;
    for (Hop& hop : hops) {
      auto target = host_.getMetamodel(hop.name, hop.to);
      const bool isCompared = target && hop.name == text && target->name == text &&
                              result_.direction != Direction::Unknown;
      const bool isOpposite =
          isCompared && areOpposite(result_.direction, host_.directionBetween(from, *target));
      result.push_back({std::move(hop), std::move(target), isOpposite});
    }
    return result;
  }

  void keepWhatLeadsToEnd(Name& name) const {
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

  /// Asks what versions that are kept depend on, and takes in what that brings in.
  void bringIn() {
    std::vector<Version*> asked;
    for (auto& [text, name] : names_) {
      for (Version& version : name.versions) {
        if (version.isKept && !version.areNeedsKnown) asked.push_back(&version);
      }
    }
    for (Version* version : asked) bringIn(*version);
  }

  void bringIn(Version& version) {
    checkpoint();
    version.areNeedsKnown = true;
    std::vector<const Dependency*> needed = dependenciesInLinkingOrder(*version.descriptor);
    if (areEndsOpen()) {
      const auto isLeftOut = [this](const Dependency* need) {
        return !names_.contains(need->name);
      };
      result_.isClosed_ &= std::erase_if(needed, isLeftOut) == 0;
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

  void addNeed(Version& version, const std::u16string& name, std::vector<Metamodel>&& candidates) {
    Need& need = version.needs.emplace_back(Need{&names_[name]});
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

  std::vector<Peer> peersOf(const Metamodel& metamodel) {
    required_.clear();
    host_.findRequirements(metamodel, required_);
    std::vector<Peer> result;
    for (PeerRequirement& requirement : required_) {
      Peer& peer = result.emplace_back(Peer{std::move(requirement.name), requirement.isOptional});
      host_.findMetamodels(peer.name, requirement.range, peer.admitted);
    }
    return result;
  }

  void addVersions() {
    SearchSpace& space = *result_.space;
    for (auto& [text, name] : names_) {
      name.index = static_cast<NameIndex>(space.names.size());
      SearchSpace::Name& added = space.names.emplace_back();
      added.text = text;
      added.first = static_cast<VersionIndex>(space.versions.size());
      added.firstWord = space.words;
      for (Version& version : name.versions) {
        if (!version.isKept || version.isLost) continue;
        version.index = static_cast<VersionIndex>(space.versions.size());
        SearchSpace::Version& kept = space.versions.emplace_back();
        kept.name = name.index;
        kept.descriptor = version.descriptor;
        kept.hops = result_.hops.emplace_back(std::move(version.hops));
        kept.isEntry = version.isEntry;
      }
      addUnknown(name);
      if (!name.isCertain) {
        added.absent = static_cast<VersionIndex>(space.versions.size());
        space.versions.emplace_back().name = name.index;
      }
      added.end = static_cast<VersionIndex>(space.versions.size());
      for (VersionIndex rank = 0; rank < added.end - added.first; ++rank) {
        space.bitOf.push_back(static_cast<std::uint32_t>(added.firstWord * bitsOfWord + rank));
      }
      space.words += added.words();
    }
  }

  /// Adds what unknown hops may lead to, if there are any.
  void addUnknown(Name& name) {
    const auto unknown =
        std::find_if(name.versions.begin(), name.versions.end(),
                     [](const Version& version) { return version.hasUnknownHops; });
    if (unknown == name.versions.end()) return;
    name.unknown = static_cast<VersionIndex>(result_.space->versions.size());
    SearchSpace::Version& added = result_.space->versions.emplace_back();
    added.name = name.index;
    added.descriptor = unknown->descriptor;
    added.isUnknown = true;
  }

  void addMoves() {
    SearchSpace& space = *result_.space;
    std::size_t most = 0;
    for (const auto& [text, name] : names_) {
      for (const Version& version : name.versions) {
        most += version.targets.size() + (version.hasUnknownHops ? 2 : 0);
      }
      most += name.unknown == SearchSpace::none ? 0 : 1;
    }
    space.moves.reserve(most);  // versions point into it
    for (const auto& [text, name] : names_) {
      for (const Version& version : name.versions) {
        if (version.index == SearchSpace::none) continue;
        SearchSpace::Version& kept = space.versions[version.index];
        const std::size_t first = space.moves.size();
        for (const Hopped& hop : version.targets) {
          const VersionIndex target = name.versions[hop.target].index;
          if (target == SearchSpace::none) continue;
          space.moves.push_back({target, kept.hops[hop.place].expensive, hop.place});
        }
        if (version.hasUnknownHops) {
          space.moves.push_back({name.unknown, false, 0});
          addMoveToGoal(name);
        }
        kept.moves = std::span(space.moves).subspan(first);
      }
      if (name.unknown == SearchSpace::none) continue;
      const std::size_t first = space.moves.size();
      addMoveToGoal(name);
      space.versions[name.unknown].moves = std::span(space.moves).subspan(first);
    }
  }

  void addMoveToGoal(const Name& name) {
    if (name.goal == nullptr) return;
    for (const Version& version : name.versions) {
      if (version.index == SearchSpace::none || *version.descriptor != *name.goal) continue;
      result_.space->moves.push_back({version.index, false, 0});
    }
  }

  void addRequirements() {
    const std::size_t count = result_.space->versions.size();
    result_.dependencies.resize(count);
    result_.needs_.resize(count);
    for (auto& [text, name] : names_) {
      for (Version& version : name.versions) {
        checkpoint();
        if (version.index == SearchSpace::none) continue;
        addRequirements(version);
        addPeers(version);
      }
    }
    for (VersionIndex version = 0; version < count; ++version) addEntries(version);
    result_.space->entryStarts.push_back(result_.space->entries.size());
  }

  void addRequirements(const Version& version) {
    for (const Dependency& dependency : version.descriptor->dependencies) {
      const auto needed = names_.find(dependency.name);
      if (needed == names_.end()) continue;  // only where ends are open
      result_.dependencies[version.index].push_back(needed->second.index);
    }
    for (const Need& need : version.needs) {
      std::vector<VersionIndex> admitted = admittedBy(need);
      result_.needs_[version.index].push_back({need.name->index, admitted});
      require(version.index, *need.name, std::move(admitted));
    }
  }

  /// Beside what is not known anything can stand.
  void require(VersionIndex version, const Name& needed, std::vector<VersionIndex>&& admitted) {
    if (needed.unknown != SearchSpace::none) admitted.push_back(needed.unknown);
    result_.requirements.push_back({version, needed.index, std::move(admitted)});
  }

  void addPeers(Version& version) {
    for (Peer& peer : version.peers) {
      const auto needed = names_.find(peer.name);
      if (needed == names_.end() && peer.isOptional) continue;  // it is never held
      if (peer.name == version.descriptor->name) throw NotForDependencies();
      // What a source lacks is looked for in the first step, which links everything anew.
      const bool isHeld = needed != names_.end() && needed->second.isCertain;
      if (!isHeld && !peer.isOptional) throw NotForDependencies();
      const Need need{&needed->second, {}, std::move(peer.admitted)};
      std::vector<VersionIndex> admitted = admittedBy(need);
      const VersionIndex absent = result_.space->names[needed->second.index].absent;
      if (absent != SearchSpace::none) admitted.push_back(absent);
      require(version.index, needed->second, std::move(admitted));
    }
  }

  static std::vector<VersionIndex> admittedBy(const Need& need) {
    std::vector<VersionIndex> admitted;
    const auto admit = [&](std::size_t place) {
      const VersionIndex index = need.name->versions[place].index;
      if (index != SearchSpace::none) admitted.push_back(index);
    };
    for (const std::size_t place : need.admitted) admit(place);
    for (const Metamodel& candidate : need.candidates) {
      const auto [begin, end] = need.name->places.equal_range(candidate.version);
      for (auto place = begin; place != end; ++place) {
        if (*need.name->versions[place->second].descriptor == candidate) admit(place->second);
      }
    }
    return admitted;
  }

  void addEntries(VersionIndex version) {
    SearchSpace& space = *result_.space;
    space.entryStarts.push_back(space.entries.size());
    for (const auto& [name, admitted] : result_.needs_[version]) {
      if (space.names[name].absent == SearchSpace::none) continue;
      space.entries.insert(space.entries.end(), admitted.begin(), admitted.end());
    }
    std::sort(space.entries.begin() + static_cast<std::ptrdiff_t>(space.entryStarts.back()),
              space.entries.end());
  }

  void addStarts() {
    for (const auto& [text, name] : names_) {
      std::vector<VersionIndex>& starts = result_.start_.versions.emplace_back();
      for (std::size_t place = 0; place < name.starts; ++place) {
        const VersionIndex index = name.versions[place].index;
        if (index != SearchSpace::none) starts.push_back(index);
      }
      const bool isSelected = result_.source_.isSelected(text) && !starts.empty();
      result_.start_.selection.push_back(isSelected ? starts.front() : SearchSpace::none);
      if (!name.isCertain) starts.push_back(result_.space->names[name.index].absent);
    }
  }

  /// As many as it takes for every start of a name to be in one.
  void addSources() {
    const auto& starts = result_.start_.versions;
    std::size_t most = 0;
    for (const auto& versions : starts) {
      if (versions.empty()) return;
      most = std::max(most, versions.size());
    }
    for (std::size_t place = 0; place < most; ++place) {
      SearchSpace::Source& source = result_.space->sources.emplace_back();
      for (const auto& versions : starts) {
        source.selection.push_back(versions[std::min(place, versions.size() - 1)]);
      }
    }
  }

  void addTarget() {
    for (const auto& [text, name] : names_) {
      VersionIndex goal = SearchSpace::none;
      for (const Version& version : name.versions) {
        if (name.goal != nullptr && *version.descriptor == *name.goal) goal = version.index;
      }
      const bool isLost = name.goal != nullptr && goal == SearchSpace::none;
      if (isLost && !areEndsOpen()) result_.space->sources.clear();
      if (isLost) result_.lost.push_back(static_cast<NameIndex>(result_.target.size()));
      result_.target.push_back(goal);
    }
  }

  SelectionHost& host_;
  DependencyFailures& failures_;
  DependencySpace& result_;
  std::map<std::u16string, Name> names_;
  std::vector<PeerRequirement> required_;
};

namespace {

/// Links what is selected, as far as that is easy: of a selection that stands for no baseline, it
/// throws the conflict of a version that cannot be linked at all.
void linkEach(SelectionHost& host, const VersionsByName& selection) {
  try {
    const LinkingBudget budget(linkingBudgetFor(selection.size()));
    for (const auto& [name, version] : selection) {
      const auto metamodel = host.getMetamodel(name, version);
      if (metamodel) host.getLinkedMetamodels(*metamodel);
    }
  } catch (const LinkingBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
  }
}

}  // namespace

DependencySpace::DependencySpace(SelectionHost& host, const VersionsByName& from,
                                 const VersionsByName& to, DependencyFailures& failures)
    : source_(host, from) {
  const auto source = source_.firstBaseline();
  if (!source) linkEach(host, from);
  if (!source) return;
  target_.emplace(host, to);
  DependencySurvey(host, failures, *this).run(*source);
  if (!hasEnds_) linkEach(host, to);
}

DependencySpace::DependencySpace(SelectionHost& host, const VersionsByName& from,
                                 const VersionsByName& to, Direction itsDirection)
    : direction(itsDirection), source_(host, from) {
  for (const auto& [name, version] : to) {
    auto goal = host.getMetamodel(name, version);
    if (!goal) reportUnknownVersion(name, version);
    if (goal->name != name) throw NotForDependencies();
    goals_.emplace(name, *std::move(goal));
  }
  auto failures = DependencyFailures::thrown();
  if (const auto source = source_.firstBaseline()) {
    DependencySurvey(host, failures, *this).run(*source);
  }
}

void DependencySpace::visitChoices(VersionSelection selection, const Decide& decide) const {
  const VersionSelection selected = selection;
  for (const VersionIndex version : selected) {
    if (version != SearchSpace::none && !visitNeeds(version, selection, decide)) return;
  }
}

/// False when nothing can be chosen for some name.
bool DependencySpace::visitNeeds(VersionIndex version, VersionSelection& selection,
                                 const Decide& decide) const {
  for (const auto& [name, admitted] : needs_[version]) {
    if (selection[name] != SearchSpace::none) continue;
    std::vector<Group> groups;
    groups.reserve(admitted.size());
    for (const VersionIndex one : admitted) groups.push_back({one});
    const std::size_t chosen = groups.size() == 1 ? 0 : decide(groups);
    if (chosen >= groups.size()) return false;
    selection[name] = admitted[chosen];
    if (!visitNeeds(admitted[chosen], selection, decide)) return false;
  }
  return true;
}

}  // namespace tarn::evolution::pathfinder
