// Names and versions get consecutive numbers, names ascending, so that sets of versions are rows of
// bits and tables are arrays. Each list that versions or variants point into is reserved for its
// greatest size before it is filled.

#include "pathfinder/planning/space_building.hpp"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "pathfinder/linking/covering_link.hpp"
#include "pathfinder/planning/space_ends.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class SpaceBuilding {
 public:
  explicit SpaceBuilding(SurveyState& met) : met_(met), space_(std::make_unique<SearchSpace>()) {}

  std::unique_ptr<const SearchSpace> run() {
    space_->names.reserve(met_.names.size());
    space_->versions.reserve(met_.versions.size() + met_.names.size());
    space_->bitOf.reserve(met_.versions.size() + met_.names.size());
    space_->variants.reserve(met_.versions.size());
    std::vector<SurveyedName*> ordered;
    for (auto& [text, name] : met_.names) {
      name.index = SearchSpace::none;
      name.unknown = SearchSpace::none;
      if (!name.versions.empty()) ordered.push_back(&name);
    }
    for (SurveyedVersion& version : met_.versions) version.index = SearchSpace::none;
    std::sort(ordered.begin(), ordered.end(),
              [](const SurveyedName* left, const SurveyedName* right) {
                return *left->text < *right->text;
              });
    for (SurveyedName* name : ordered) addName(*name);
    addMoves();
    addClosures();
    if (space_->anyLinksOwnName) admitWhatStandsBack();
    addRequirements();
    markWhatCannotBeCombined();
    addEntries();
    if (space_->anyLinksOwnName) findFirstIrrelevantName();
    markCertainNames(ordered);
    addEnds(met_, *space_);
    return std::move(space_);
  }

 private:
  void addName(SurveyedName& name) {
    name.index = static_cast<NameIndex>(space_->names.size());
    const auto first = static_cast<VersionIndex>(space_->versions.size());
    for (SurveyedVersion* version : name.versions) {
      if (isIn(*version)) addVersion(name, *version);
    }
    if (hasUnknownHops(name)) addUnknownVersion(name);
    SearchSpace::Name& added = space_->names.emplace_back();
    added.text = *name.text;
    added.first = first;
    if (!met_.isHeldFromStart(name)) {
      added.absent = static_cast<VersionIndex>(space_->versions.size());
      space_->versions.emplace_back().name = name.index;
    }
    added.end = static_cast<VersionIndex>(space_->versions.size());
    added.firstWord = space_->words;
    space_->words += added.words();
    for (VersionIndex rank = 0; rank < added.end - first; ++rank) {
      space_->bitOf.push_back(static_cast<std::uint32_t>(added.firstWord * bitsOfWord + rank));
    }
  }

  bool isIn(const SurveyedVersion& version) const {
    const bool isLinked =
        version.linked != nullptr || (version.isAssumedBest && version.isUnlinkable);
    return isLinked && met_.isOfUse(version);
  }

  void addVersion(SurveyedName& name, SurveyedVersion& surveyed) {
    surveyed.index = static_cast<VersionIndex>(space_->versions.size());
    SearchSpace::Version& version = space_->versions.emplace_back();
    version.name = name.index;
    version.descriptor = surveyed.descriptor;
    version.linked = surveyed.linked;
    version.firstVariant = static_cast<VariantIndex>(space_->variants.size());
    version.hops = surveyed.hops;
    version.isEntry = surveyed.isEntry;
    version.areHopsCollected = surveyed.isAsked && !surveyed.losesHop && !surveyed.hasUnknownHops;
    if (surveyed.linked == nullptr) {
      space_->variants.emplace_back().version = surveyed.index;  // as if it linked nothing
      ++linkCount_;
    } else {
      for (const auto& linked : *surveyed.linked) addVariant(name, *linked, surveyed.index);
      version.linksAtWill =
          surveyed.linked->size() > 1 &&
          std::any_of(surveyed.linked->begin(), surveyed.linked->end(),
                      [](const auto& linked) { return linksMoreThanNeeded(*linked); });
      space_->anyLinksAtWill |= version.linksAtWill;
    }
    version.variantCount =
        static_cast<VariantIndex>(space_->variants.size()) - version.firstVariant;
  }

  /// Whether the application has linked what no dependency asks for.
  static bool linksMoreThanNeeded(const LinkedMetamodel& linked) {
    if (linked.linkedMetamodels.empty() || coveringLink(linked) != nullptr) return false;
    const auto isNeeded = [&](const std::u16string& name) {
      return std::any_of(linked.dependencies.begin(), linked.dependencies.end(),
                         [&](const Dependency& dependency) {
                           if (dependency.name == name) return true;
                           const auto link = linked.linkedMetamodels.find(dependency.name);
                           return link != linked.linkedMetamodels.end() &&
                                  link->second->linkedMetamodels.contains(name);
                         });
    };
    return !std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(),
                        [&](const auto& link) { return isNeeded(link.first); });
  }

  VariantIndex addVariant(const SurveyedName& name, const LinkedMetamodel& linked,
                          VersionIndex version) {
    const auto index = static_cast<VariantIndex>(space_->variants.size());
    space_->variants.emplace_back().version = version;
    if (name.isLinked || !linked.linkedMetamodels.empty())
      space_->variantOf.emplace(&linked, index);
    linkCount_ += linked.linkedMetamodels.size() + 1;
    return index;
  }

  static bool hasUnknownHops(const SurveyedVersion& version) {
    return version.isAssumedBest && version.hasUnknownHops;
  }

  static bool hasUnknownHops(const SurveyedName& name) {
    return std::any_of(name.versions.begin(), name.versions.end(),
                       [](const SurveyedVersion* version) { return hasUnknownHops(*version); });
  }

  /// Adds the version that stands for all that unknown hops may lead to.
  void addUnknownVersion(SurveyedName& name) {
    name.unknown = static_cast<VersionIndex>(space_->versions.size());
    SearchSpace::Version& version = space_->versions.emplace_back();
    version.name = name.index;
    version.descriptor = name.versions.front()->descriptor;
    version.isUnknown = true;
    version.firstVariant = static_cast<VariantIndex>(space_->variants.size());
    version.variantCount = 1;
    space_->variants.emplace_back().version = name.unknown;
    ++linkCount_;
  }

  void addMoves() {
    std::size_t most = met_.hopTargets.size();
    for (const auto& [text, name] : met_.names) {
      if (name.unknown == SearchSpace::none) continue;
      const std::size_t versions = name.versions.size() + 1;
      most += versions * versions;
    }
    space_->moves.reserve(most);  // versions point into it
    for (const SurveyedVersion& surveyed : met_.versions) {
      if (surveyed.index == SearchSpace::none) continue;
      SearchSpace::Version& version = space_->versions[surveyed.index];
      const std::size_t first = space_->moves.size();
      for (const auto& [place, target] : met_.targetsOf(surveyed)) {
        if (target->index == SearchSpace::none) continue;
        space_->moves.push_back({target->index, version.hops[place].expensive, place});
      }
      if (hasUnknownHops(surveyed)) addMovesToAll(*surveyed.name);
      version.moves = std::span(space_->moves).subspan(first);
    }
    for (const auto& [text, name] : met_.names) {
      if (name.unknown == SearchSpace::none) continue;
      const std::size_t first = space_->moves.size();
      addMovesToAll(name);
      space_->versions[name.unknown].moves = std::span(space_->moves).subspan(first);
    }
  }

  void addMovesToAll(const SurveyedName& name) {
    for (const SurveyedVersion* target : name.versions) {
      if (target->index != SearchSpace::none) space_->moves.push_back({target->index, false, 0});
    }
    space_->moves.push_back({name.unknown, false, 0});
  }

  void addClosures() {
    space_->links.reserve(linkCount_);  // variants point into it
    std::vector<Linking> linking;
    for (const SurveyedVersion& surveyed : met_.versions) {
      if (surveyed.index == SearchSpace::none) continue;
      VariantIndex variant = space_->versions[surveyed.index].firstVariant;
      if (surveyed.linked == nullptr) {
        addClosure(variant, {});
        continue;
      }
      for (const auto& linked : *surveyed.linked) {
        if (linked->linkedMetamodels.empty()) {
          addClosure(variant++, {});
        } else {
          linking.push_back({variant++, linked.get()});
        }
      }
    }
    for (const auto& [text, name] : met_.names) {
      if (name.unknown == SearchSpace::none) continue;
      addClosure(space_->versions[name.unknown].firstVariant, {});
    }
    addClosures(std::move(linking));
  }

  struct Linking {
    VariantIndex variant;
    const LinkedMetamodel* linked;
  };

  /// Along covering links, each closure is the one before and one link more.
  void addClosures(std::vector<Linking> linking) {
    std::sort(linking.begin(), linking.end(), [](const Linking& left, const Linking& right) {
      return left.linked->linkedMetamodels.size() < right.linked->linkedMetamodels.size();
    });
    for (const auto& [variant, linked] : linking) {
      const LinkedMetamodel* covering = coveringLink(*linked);
      const auto known =
          covering == nullptr ? space_->variantOf.end() : space_->variantOf.find(covering);
      if (known != space_->variantOf.end() && !space_->variants[known->second].closure.empty()) {
        addClosure(variant, space_->variants[known->second].closure);
        space_->variants[variant].canBeCombined = space_->variants[known->second].canBeCombined;
      } else {
        const std::vector<SearchSpace::Link> links = linksOf(*linked);
        addClosure(variant, links);
        space_->variants[variant].canBeCombined = areInSpace(links);
        space_->variants[variant].linksOwnName = linked->linkedMetamodels.contains(linked->name);
        space_->anyLinksOwnName |= space_->variants[variant].linksOwnName;
      }
    }
  }

  /// Adds what a variant links, by ascending name, and the variant itself.
  void addClosure(VariantIndex variant, std::span<const SearchSpace::Link> linked) {
    const SearchSpace::Link own{space_->versions[space_->variants[variant].version].name, variant};
    const std::size_t first = space_->links.size();
    const auto place = std::upper_bound(linked.begin(), linked.end(), own, isBefore);
    std::copy(linked.begin(), place, std::back_inserter(space_->links));
    space_->links.push_back(own);
    std::copy(place, linked.end(), std::back_inserter(space_->links));
    space_->variants[variant].closure = std::span(space_->links).subspan(first);
  }

  std::vector<SearchSpace::Link> linksOf(const LinkedMetamodel& linked) {
    std::vector<SearchSpace::Link> links;
    links.reserve(linked.linkedMetamodels.size());
    for (const auto& [text, link] : linked.linkedMetamodels) {
      if (text != linked.name) links.push_back(linkTo(*link));
    }
    std::sort(links.begin(), links.end(), isBefore);
    return links;
  }

  bool areInSpace(const std::vector<SearchSpace::Link>& links) const {
    return std::all_of(links.begin(), links.end(), [this](const SearchSpace::Link& link) {
      return space_->variants[link.variant].version != SearchSpace::none;
    });
  }

  static bool isBefore(const SearchSpace::Link& left, const SearchSpace::Link& right) {
    return left.name < right.name;
  }

  SearchSpace::Link linkTo(const LinkedMetamodel& linked) {
    const auto known = space_->variantOf.find(&linked);
    const SurveyedName& name = met_.nameOf(linked.name);
    const VariantIndex variant = known != space_->variantOf.end()
                                     ? known->second
                                     : addVariant(name, linked, SearchSpace::none);
    return {name.index, variant};
  }

  void addRequirements() {
    for (const SurveyedVersion& surveyed : met_.versions) {
      if (surveyed.index == SearchSpace::none || surveyed.requirements == nullptr) continue;
      for (const ResolvedRequirement& requirement : *surveyed.requirements) {
        if (!addRequirement(surveyed, requirement)) markAsNeverHeld(surveyed.index);
      }
    }
  }

  /// False when no baseline of the space meets it.
  bool addRequirement(const SurveyedVersion& surveyed, const ResolvedRequirement& requirement) {
    const auto needed = met_.names.find(requirement.name);
    if (needed == met_.names.end() || needed->second.index == SearchSpace::none) {
      return requirement.isOptional;
    }
    const SurveyedName& name = needed->second;
    if (&name == surveyed.name) return requirement.admitted.contains(*surveyed.descriptor);
    const VersionIndex absent = space_->names[name.index].absent;
    SearchSpace::Requirement& added =
        space_->requirements.emplace_back(SearchSpace::Requirement{surveyed.index, name.index, {}});
    for (const SurveyedVersion* version : name.versions) {
      if (version->index == SearchSpace::none) continue;
      if (requirement.admitted.contains(*version->descriptor)) {
        added.admitted.push_back(version->index);
      }
    }
    if (name.unknown != SearchSpace::none) added.admitted.push_back(name.unknown);
    if (requirement.isOptional && absent != SearchSpace::none) added.admitted.push_back(absent);
    return true;
  }

  void markAsNeverHeld(VersionIndex index) {
    const SearchSpace::Version& version = space_->versions[index];
    const auto variants = std::span(space_->variants).subspan(version.firstVariant);
    for (SearchSpace::Variant& variant : variants.first(version.variantCount)) {
      variant.canBeCombined = false;
    }
  }

  /// Notes which versions of names that may be absent each version may bring in.
  void addEntries() {
    const bool anyIsEntry =
        std::any_of(space_->versions.begin(), space_->versions.end(),
                    [](const SearchSpace::Version& version) { return version.isEntry; });
    if (!anyIsEntry) return;
    const auto isEntry = [this](const SearchSpace::Link& link) {
      const VersionIndex version = space_->variants[link.variant].version;
      return version != SearchSpace::none && space_->versions[version].isEntry;
    };
    for (VersionIndex version = 0; version < space_->versions.size(); ++version) {
      const std::size_t first = space_->entries.size();
      space_->entryStarts.push_back(first);
      for (const SearchSpace::Variant& variant : space_->variantsOf(version)) {
        if (!variant.canBeCombined) continue;
        for (const SearchSpace::Link& link : variant.closure) {
          if (!isEntry(link)) continue;
          const VersionIndex entry = space_->variants[link.variant].version;
          if (entry != version) space_->entries.push_back(entry);
        }
      }
      const auto added = space_->entries.begin() + static_cast<std::ptrdiff_t>(first);
      std::sort(added, space_->entries.end());
      space_->entries.erase(std::unique(added, space_->entries.end()), space_->entries.end());
    }
    space_->entryStarts.push_back(space_->entries.size());
  }

  void markWhatCannotBeCombined() {
    for (SearchSpace::Version& version : space_->versions) {
      if (version.descriptor == nullptr) continue;
      const auto variants = std::span(space_->variants).subspan(version.firstVariant);
      version.canBeCombined =
          std::any_of(variants.begin(), variants.begin() + version.variantCount,
                      [](const SearchSpace::Variant& variant) { return variant.canBeCombined; });
    }
  }

  void admitWhatStandsBack() {
    for (const SearchSpace::Variant& variant : space_->variants) {
      if (variant.linksOwnName) admitWhatStandsBackFor(variant);
    }
  }

  /// What a variant brings in can be combined even if it links another version of the variant's
  /// name that is not in the space.
  void admitWhatStandsBackFor(const SearchSpace::Variant& variant) {
    const NameIndex name = space_->versions[variant.version].name;
    for (const SearchSpace::Link& link : variant.closure) {
      SearchSpace::Variant& linked = space_->variants[link.variant];
      linked.canBeCombined |= std::all_of(
          linked.closure.begin(), linked.closure.end(), [&](const SearchSpace::Link& further) {
            return further.name == name ||
                   space_->variants[further.variant].version != SearchSpace::none;
          });
    }
  }

  void findFirstIrrelevantName() {
    const auto isBefore = [](const SearchSpace::Name& name, const std::u16string& text) {
      return name.text < text;
    };
    for (const auto& held : met_.question.sources.front().metamodels) {
      const auto next =
          std::lower_bound(space_->names.begin(), space_->names.end(), held.first, isBefore);
      if (next != space_->names.end() && next->text == held.first) continue;
      space_->firstIrrelevant =
          std::min(space_->firstIrrelevant, static_cast<NameIndex>(next - space_->names.begin()));
    }
  }

  void markCertainNames(const std::vector<SurveyedName*>& met) {
    const auto hasOneEach = [&](const SearchSpace::Name& name) {
      return std::all_of(
          space_->versions.begin() + name.first, space_->versions.begin() + name.end,
          [](const SearchSpace::Version& version) { return version.variantCount == 1; });
    };
    const auto linksNothing = [&](const SearchSpace::Name& name) {
      return std::all_of(space_->versions.begin() + name.first, space_->versions.begin() + name.end,
                         [&](const SearchSpace::Version& version) {
                           return space_->variants[version.firstVariant].closure.size() == 1;
                         });
    };
    const bool areAll = std::all_of(space_->names.begin(), space_->names.end(), hasOneEach);
    for (const SurveyedName* surveyed : met) {
      SearchSpace::Name& name = space_->names[surveyed->index];
      name.isCertain = areAll || (!surveyed->isLinked && hasOneEach(name) && linksNothing(name));
    }
  }

  SurveyState& met_;
  std::unique_ptr<SearchSpace> space_;
  std::size_t linkCount_ = 0;
};

}  // namespace

std::unique_ptr<const SearchSpace> buildSearchSpace(SurveyState& met) {
  return SpaceBuilding(met).run();
}

}  // namespace tarn::evolution::pathfinder
