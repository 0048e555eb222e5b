// Breadth-first exploration of each name by itself over hops that do not go against the direction,
// from the source's version on; then, of a name that the target fixes, only what leads to its
// version is kept, unless ends are left open. Each dependency of what is left becomes a
// requirement.

#include "pathfinder/learning/dependency_space.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

class DependencySurvey {
 public:
  DependencySurvey(SelectionHost& host, DependencySpace& result) : host_(host), result_(result) {}

  void run() {
    addNames();
    result_.hasEnds_ = findEnds();
    if (!result_.hasEnds_) return;
    for (Name& name : names_) {
      explore(name);
      if (!areEndsOpen()) keepWhatLeadsToEnd(name);
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

  /// Finds the direction from end to end, unless it is given; false when there is none to begin
  /// with, or to go to.
  bool findEnds() {
    const auto source = result_.source_.firstBaseline();
    if (!source || areEndsOpen()) return source.has_value();
    const auto target = result_.target_->firstBaseline();
    if (target) result_.direction = directionBetween(*source, *target);
    return target.has_value();
  }

  struct Hopped {
    std::uint32_t place;
    std::size_t target;
  };

  struct Version {
    const Metamodel* descriptor;
    std::vector<Hop> hops = {};        // that do not go against the direction
    std::vector<Hopped> targets = {};  // of those that lead to a version
    bool isKept = true;
    VersionIndex index = SearchSpace::none;
  };

  struct Name {
    const std::u16string* text;
    const Metamodel* goal = nullptr;
    std::vector<Version> versions = {};  // the source's first
    std::unordered_multimap<VersionId, std::size_t, std::hash<VersionId>> places = {};
  };

  void addNames() {
    for (const auto& [text, versions] : result_.source_.names()) {
      Name& name = names_.emplace_back(Name{&text});
      placeOfName_.emplace(text, static_cast<NameIndex>(names_.size() - 1));
      for (const auto& version : versions) addVersion(name, Metamodel(version.descriptor));
      result_.isOpen_ |= versions.size() > 1;
    }
    for (const auto& [text, goal] : result_.goals_) nameOf(text).goal = &goal;
    if (areEndsOpen()) return;
    for (const auto& [text, versions] : result_.target_->names()) {
      Name& name = nameOf(text);
      if (result_.target_->isSelected(text)) name.goal = &versions.front().descriptor;
    }
  }

  Name& nameOf(const std::u16string& text) {
    const auto place = placeOfName_.find(text);
    if (place == placeOfName_.end()) throw NotClosed();
    return names_[place->second];
  }

  void requireClosed(const Metamodel& metamodel) const {
    std::set<std::u16string> seen{metamodel.name};
    for (const Dependency& dependency : metamodel.dependencies) {
      if (!seen.insert(dependency.name).second) throw NotClosed();
      if (placeOfName_.contains(dependency.name)) continue;
      if (!areEndsOpen()) throw NotClosed();
      result_.isClosed_ = false;
    }
  }

  using Baseline = std::map<std::u16string, const Metamodel*>;

  /// As `VersionRepository::computeDirection` has it.
  Direction directionBetween(const Baseline& source, const Baseline& target) {
    Direction result = Direction::Unknown;
    for (const auto& [name, after] : target) {
      const Direction direction = host_.directionBetween(*source.at(name), *after);
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

  void explore(Name& name) {
    for (std::size_t i = 0; i < name.versions.size(); ++i) {
      checkpoint();
      const Metamodel& descriptor = *name.versions[i].descriptor;
      requireClosed(descriptor);
      std::vector<Hop> offered;
      host_.findHops(*name.text, descriptor.version, offered);
      for (Hop& hop : offered) follow(name, i, std::move(hop));
    }
  }

  void follow(Name& name, std::size_t place, Hop&& hop) {
    auto target = host_.getMetamodel(hop.name, hop.to);
    if (target && target->name != *name.text) throw NotClosed();  // the hop's own name, or another
    if (result_.direction != Direction::Unknown) {
      if (!target) throw NotClosed();  // a fault of the application's, which a plain search reports
      const Metamodel& descriptor = *name.versions[place].descriptor;
      if (areOpposite(result_.direction, host_.directionBetween(descriptor, *target))) return;
    }
    if (target) {
      const std::size_t to = addVersion(name, *std::move(target));
      Version& version = name.versions[place];
      version.targets.push_back({static_cast<std::uint32_t>(version.hops.size()), to});
    }
    name.versions[place].hops.push_back(std::move(hop));
  }

  static void keepWhatLeadsToEnd(Name& name) {
    if (name.goal == nullptr) return;
    for (Version& version : name.versions) version.isKept = *version.descriptor == *name.goal;
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

  void addVersions() {
    SearchSpace& space = *result_.space;
    for (Name& name : names_) {
      SearchSpace::Name& added = space.names.emplace_back();
      added.text = *name.text;
      added.first = static_cast<VersionIndex>(space.versions.size());
      added.firstWord = space.words;
      for (Version& version : name.versions) {
        if (!version.isKept) continue;
        version.index = static_cast<VersionIndex>(space.versions.size());
        SearchSpace::Version& kept = space.versions.emplace_back();
        kept.name = static_cast<NameIndex>(space.names.size() - 1);
        kept.descriptor = version.descriptor;
        kept.hops = result_.hops.emplace_back(std::move(version.hops));
        const std::size_t rank = version.index - added.first;
        space.bitOf.push_back(static_cast<std::uint32_t>(added.firstWord * bitsOfWord + rank));
      }
      added.end = static_cast<VersionIndex>(space.versions.size());
      space.words += added.words();
    }
  }

  void addMoves() {
    SearchSpace& space = *result_.space;
    std::size_t most = 0;
    for (const Name& name : names_) {
      for (const Version& version : name.versions) most += version.targets.size();
    }
    space.moves.reserve(most);  // versions point into it
    for (const Name& name : names_) {
      for (const Version& version : name.versions) {
        if (version.index == SearchSpace::none) continue;
        SearchSpace::Version& kept = space.versions[version.index];
        const std::size_t first = space.moves.size();
        for (const Hopped& hop : version.targets) {
          const VersionIndex target = name.versions[hop.target].index;
          if (target == SearchSpace::none) continue;
          space.moves.push_back({target, kept.hops[hop.place].expensive, hop.place});
        }
        kept.moves = std::span(space.moves).subspan(first);
      }
    }
  }

  void addRequirements() {
    result_.dependencies.resize(result_.space->versions.size());
    for (VersionIndex version = 0; version < result_.space->versions.size(); ++version) {
      checkpoint();
      for (const Dependency& dependency :
           result_.space->versions[version].descriptor->dependencies) {
        const auto place = placeOfName_.find(dependency.name);
        if (place == placeOfName_.end()) continue;  // only where ends are open
        const NameIndex needed = place->second;
        result_.dependencies[version].push_back(needed);
        result_.requirements.push_back({version, needed, admittedBy(dependency, names_[needed])});
      }
    }
  }

  std::vector<VersionIndex> admittedBy(const Dependency& dependency, const Name& needed) {
    candidates_.clear();
    host_.findMetamodels(dependency.name, dependency.range, candidates_);
    std::vector<VersionIndex> admitted;
    for (const Metamodel& candidate : candidates_) {
      const auto [begin, end] = needed.places.equal_range(candidate.version);
      for (auto place = begin; place != end; ++place) {
        const Version& version = needed.versions[place->second];
        if (version.index == SearchSpace::none || *version.descriptor != candidate) continue;
        admitted.push_back(version.index);
      }
    }
    return admitted;
  }

  void addStarts() {
    for (const Name& name : names_) {
      std::vector<VersionIndex>& kept = result_.starts_.emplace_back();
      std::vector<VersionIndex>& all = result_.indices_[*name.text];
      const std::size_t count = result_.source_.names().at(*name.text).size();
      for (std::size_t place = 0; place < count; ++place) {
        const VersionIndex index = name.versions[place].index;
        all.push_back(index);
        if (index != SearchSpace::none) kept.push_back(index);
      }
    }
  }

  /// As many as it takes for every start of a name to be in one.
  void addSources() {
    const auto& starts = result_.starts_;
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
    for (const Name& name : names_) {
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
  DependencySpace& result_;
  std::vector<Name> names_;
  std::unordered_map<std::u16string, NameIndex> placeOfName_;
  std::vector<Metamodel> candidates_;
};

DependencySpace::DependencySpace(SelectionHost& host, const VersionsByName& from,
                                 const VersionsByName& to)
    : source_(host, from), target_(std::in_place, host, to) {
  DependencySurvey(host, *this).run();
}

DependencySpace::DependencySpace(SelectionHost& host, const VersionsByName& from,
                                 const VersionsByName& to, Direction itsDirection)
    : direction(itsDirection), source_(host, from) {
  for (const auto& [name, version] : to) {
    auto goal = host.getMetamodel(name, version);
    if (!goal) reportUnknownVersion(name, version);
    if (goal->name != name) throw NotClosed();
    goals_.emplace(name, *std::move(goal));
  }
  DependencySurvey(host, *this).run();
}

void DependencySpace::visitChoices(const Decide& decide) const {
  source_.visitInOrder([&](const std::u16string& name, const std::vector<std::size_t>& places) {
    std::vector<VersionIndex> versions;
    versions.reserve(places.size());
    for (const std::size_t place : places) versions.push_back(indices_.at(name)[place]);
    return places[decide(versions)];
  });
}

}  // namespace tarn::evolution::pathfinder
