// Each dependency of what was surveyed becomes a requirement, beside those that the application has
// by itself.
//
// Where the best is assumed of hops that are not known, a version of its own stands for all that
// they lead to: it can stand beside anything, so nothing is gained by leaving it but for the
// target's version.

#include "pathfinder/learning/dependency_space.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "pathfinder/learning/dependency_survey.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

/// Makes a space of what was surveyed, which it uses up.
class DependencyBuilding {
 public:
  DependencyBuilding(DependencySurvey& survey, DependencySpace& result)
      : survey_(survey), result_(result) {}

  void run() {
    result_.isOpen_ = survey_.isOpen;
    result_.isClosed_ = survey_.isClosed;
    result_.descriptors = std::move(survey_.descriptors);
    addVersions();
    addMoves();
    addRequirements();
    if (mayBringInOwnName(result_.needs_, survey_.names.size())) throw NotForDependencies();
    addStarts();
    addSources();
    addTarget();
  }

 private:
  using Hopped = DependencySurvey::Hopped;
  using Name = DependencySurvey::Name;
  using Need = DependencySurvey::Need;
  using Peer = DependencySurvey::Peer;
  using Version = DependencySurvey::Version;

  void addVersions() {
    SearchSpace& space = *result_.space;
    for (auto& [text, name] : survey_.names) {
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
    for (const auto& [text, name] : survey_.names) {
      for (const Version& version : name.versions) {
        most += version.targets.size() + (version.hasUnknownHops ? 2 : 0);
      }
      most += name.unknown == SearchSpace::none ? 0 : 1;
    }
    space.moves.reserve(most);  // versions point into it
    for (const auto& [text, name] : survey_.names) {
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
    for (const auto& version : result_.space->versions) result_.needs_.push_back({version.name});
    for (auto& [text, name] : survey_.names) {
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
      const auto needed = survey_.names.find(dependency.name);
      if (needed == survey_.names.end()) continue;  // only where ends are open
      result_.dependencies[version.index].push_back(needed->second.index);
    }
    for (const Need& need : version.needs) {
      std::vector<VersionIndex> admitted = admittedBy(need);
      result_.needs_[version.index].needs.push_back({need.name->index, admitted});
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
      const auto needed = survey_.names.find(peer.name);
      if (needed == survey_.names.end() && peer.isOptional) continue;  // it is never held
      if (peer.name == version.descriptor->name) throw NotForDependencies();
      // What a source lacks is looked for in the first step, which links everything anew.
      const bool isHeld = needed != survey_.names.end() && needed->second.isCertain;
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
    for (const auto& [name, admitted] : result_.needs_[version].needs) {
      if (space.names[name].absent == SearchSpace::none) continue;
      space.entries.insert(space.entries.end(), admitted.begin(), admitted.end());
    }
    std::sort(space.entries.begin() + static_cast<std::ptrdiff_t>(space.entryStarts.back()),
              space.entries.end());
  }

  void addStarts() {
    for (const auto& [text, name] : survey_.names) {
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
    for (const auto& [text, name] : survey_.names) {
      VersionIndex goal = SearchSpace::none;
      for (const Version& version : name.versions) {
        if (name.goal != nullptr && *version.descriptor == *name.goal) goal = version.index;
      }
      const bool isLost = name.goal != nullptr && goal == SearchSpace::none;
      if (isLost && !!result_.target_) result_.space->sources.clear();
      if (isLost) result_.lost.push_back(static_cast<NameIndex>(result_.target.size()));
      result_.target.push_back(goal);
    }
  }

  DependencySurvey& survey_;
  DependencySpace& result_;
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

DependencySpace::DependencySpace(SelectionHost& host, const SelectionQuestion& question,
                                 DependencyFailures& failures)
    : source_(host, question.from) {
  const auto source = source_.firstBaseline();
  if (!source) linkEach(host, question.from);
  if (!source) return;
  target_.emplace(host, question.to);
  const auto end = target_->firstBaseline();
  if (!end) {
    linkEach(host, question.to);
    return;
  }
  direction = question.direction ? *question.direction : directionBetween(host, *source, *end);
  buildFrom(host, failures);
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
  if (source_.firstBaseline()) buildFrom(host, failures);
}

void DependencySpace::buildFrom(SelectionHost& host, DependencyFailures& failures) {
  hasEnds_ = true;
  DependencySurvey survey(host, failures,
                          {source_, target_ ? &*target_ : nullptr, goals_, direction});
  DependencyBuilding(survey, *this).run();
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
  for (const auto& [name, admitted] : needs_[version].needs) {
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
