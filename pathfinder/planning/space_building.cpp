#include "pathfinder/planning/space_building.hpp"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "pathfinder/covering_link.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class SpaceBuilding {
 public:
  SpaceBuilding(SurveyDrafts& met, SearchSpace& space) : met_(met), space_(space) {}

  void run() {
    space_.names.reserve(met_.names.size());
    space_.versions.reserve(met_.drafts.size() + met_.names.size());
    space_.variants.reserve(met_.drafts.size());
    std::vector<DraftName*> ordered;
    for (auto& [text, name] : met_.names) {
      if (!name.versions.empty()) ordered.push_back(&name);
    }
    std::sort(ordered.begin(), ordered.end(), [](const DraftName* left, const DraftName* right) {
      return *left->text < *right->text;
    });
    for (DraftName* name : ordered) addName(*name);
    addMoves();
    addClosures();
    addEntries();
    markCertainNames(ordered);
    addSelections();
  }

 private:
  void addName(DraftName& name) {
    name.index = static_cast<NameIndex>(space_.names.size());
    const auto first = static_cast<VersionIndex>(space_.versions.size());
    for (Draft* draft : name.versions) {
      if (draft->linked == nullptr || !met_.isOfUse(*draft)) continue;
      draft->index = static_cast<VersionIndex>(space_.versions.size());
      SearchSpace::Version& version = space_.versions.emplace_back();
      version.name = name.index;
      version.descriptor = draft->descriptor;
      version.linked = draft->linked;
      version.firstVariant = static_cast<VariantIndex>(space_.variants.size());
      version.hops = std::span(space_.hops).subspan(draft->firstHop, draft->hopCount);
      version.losesHop = draft->losesHop;
      version.isEntry = draft->isEntry;
      for (const auto& linked : *draft->linked) addVariant(name, *linked, draft->index);
    }
    SearchSpace::Name& added = space_.names.emplace_back();
    added.text = *name.text;
    added.first = first;
    if (!met_.isHeldFromStart(name)) {
      added.absent = static_cast<VersionIndex>(space_.versions.size());
      space_.versions.emplace_back().name = name.index;
    }
    added.end = static_cast<VersionIndex>(space_.versions.size());
    added.firstWord = space_.words;
    space_.words += added.words();
  }

  VariantIndex addVariant(const DraftName& name, const LinkedMetamodel& linked,
                          VersionIndex version) {
    const auto index = static_cast<VariantIndex>(space_.variants.size());
    space_.variants.emplace_back().version = version;
    if (name.isLinked || !linked.linkedMetamodels.empty()) space_.variantOf.emplace(&linked, index);
    linkCount_ += linked.linkedMetamodels.size() + 1;
    return index;
  }

  void addMoves() {
    space_.moves.reserve(met_.hopTargets.size());  // versions point into it
    for (const Draft& draft : met_.drafts) {
      if (draft.index == SearchSpace::none) continue;
      SearchSpace::Version& version = space_.versions[draft.index];
      const std::size_t first = space_.moves.size();
      for (const auto& [place, target] : met_.targetsOf(draft)) {
        if (target->index == SearchSpace::none) continue;
        space_.moves.push_back({target->index, version.hops[place].expensive, place});
      }
      version.moves = std::span(space_.moves).subspan(first);
    }
  }

  void addClosures() {
    space_.links.reserve(linkCount_);  // variants point into it
    std::vector<Linking> linking;
    for (const Draft& draft : met_.drafts) {
      if (draft.index == SearchSpace::none) continue;
      VariantIndex variant = space_.versions[draft.index].firstVariant;
      for (const auto& linked : *draft.linked) {
        if (linked->linkedMetamodels.empty()) {
          addClosure(variant++, {});
        } else {
          linking.push_back({variant++, linked.get()});
        }
      }
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
          covering == nullptr ? space_.variantOf.end() : space_.variantOf.find(covering);
      if (known != space_.variantOf.end() && !space_.variants[known->second].closure.empty()) {
        addClosure(variant, space_.variants[known->second].closure);
      } else {
        addClosure(variant, linksOf(*linked));
      }
    }
  }

  /// Adds what a variant links, by ascending name, and the variant itself.
  void addClosure(VariantIndex variant, std::span<const SearchSpace::Link> linked) {
    const SearchSpace::Link own{space_.versions[space_.variants[variant].version].name, variant};
    const std::size_t first = space_.links.size();
    const auto place = std::upper_bound(linked.begin(), linked.end(), own, isBefore);
    std::copy(linked.begin(), place, std::back_inserter(space_.links));
    space_.links.push_back(own);
    std::copy(place, linked.end(), std::back_inserter(space_.links));
    space_.variants[variant].closure = std::span(space_.links).subspan(first);
  }

  std::vector<SearchSpace::Link> linksOf(const LinkedMetamodel& linked) {
    std::vector<SearchSpace::Link> links;
    links.reserve(linked.linkedMetamodels.size());
    for (const auto& [text, link] : linked.linkedMetamodels) links.push_back(linkTo(*link));
    std::sort(links.begin(), links.end(), isBefore);
    return links;
  }

  static bool isBefore(const SearchSpace::Link& left, const SearchSpace::Link& right) {
    return left.name < right.name;
  }

  SearchSpace::Link linkTo(const LinkedMetamodel& linked) {
    const auto known = space_.variantOf.find(&linked);
    const DraftName& name = met_.nameOf(linked.name);
    const VariantIndex variant = known != space_.variantOf.end()
                                     ? known->second
                                     : addVariant(name, linked, SearchSpace::none);
    return {name.index, variant};
  }

  /// Notes which versions of names that may be absent each version may bring in.
  void addEntries() {
    const bool anyIsEntry =
        std::any_of(space_.versions.begin(), space_.versions.end(),
                    [](const SearchSpace::Version& version) { return version.isEntry; });
    if (!anyIsEntry) return;
    const auto isEntry = [this](const SearchSpace::Link& link) {
      const VersionIndex version = space_.variants[link.variant].version;
      return version != SearchSpace::none && space_.versions[version].isEntry;
    };
    std::vector<std::size_t> ends;
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      const std::size_t first = space_.entries.size();
      for (const SearchSpace::Variant& variant : space_.variantsOf(version)) {
        for (const SearchSpace::Link& link : variant.closure) {
          if (!isEntry(link)) continue;
          const VersionIndex entry = space_.variants[link.variant].version;
          if (entry != version) space_.entries.push_back(entry);
        }
      }
      const auto added = space_.entries.begin() + static_cast<std::ptrdiff_t>(first);
      std::sort(added, space_.entries.end());
      space_.entries.erase(std::unique(added, space_.entries.end()), space_.entries.end());
      ends.push_back(space_.entries.size());
    }
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      const std::size_t first = version == 0 ? 0 : ends[version - 1];
      space_.versions[version].entries =
          std::span(space_.entries).subspan(first, ends[version] - first);
    }
  }

  void markCertainNames(const std::vector<DraftName*>& met) {
    const auto hasOneEach = [&](const SearchSpace::Name& name) {
      return std::all_of(
          space_.versions.begin() + name.first, space_.versions.begin() + name.end,
          [](const auto& version) { return version.linked && version.linked->size() == 1; });
    };
    const auto linksNothing = [&](const SearchSpace::Name& name) {
      return std::all_of(space_.versions.begin() + name.first, space_.versions.begin() + name.end,
                         [&](const SearchSpace::Version& version) {
                           return space_.variants[version.firstVariant].closure.size() == 1;
                         });
    };
    const bool areAll = std::all_of(space_.names.begin(), space_.names.end(), hasOneEach);
    for (const DraftName* draft : met) {
      SearchSpace::Name& name = space_.names[draft->index];
      name.isCertain = areAll || (!draft->isLinked && hasOneEach(name) && linksNothing(name));
    }
  }

  void addSelections() {
    VersionSelection absent;
    for (const SearchSpace::Name& name : space_.names) absent.push_back(name.absent);
    for (const auto& source : met_.sources) {
      VersionSelection selection = absent;
      const bool isComplete =
          select(source, selection) &&
          std::find(selection.begin(), selection.end(), SearchSpace::none) == selection.end();
      if (!isComplete) selection.clear();
      space_.sources.push_back(std::move(selection));
    }
    for (const auto& target : met_.targets) {
      VersionSelection selection(space_.names.size(), SearchSpace::none);
      if (select(target, selection)) space_.targets.push_back(std::move(selection));
    }
  }

  /// False when something held is of no version of the space.
  static bool select(const std::vector<HeldDraft>& held, VersionSelection& selection) {
    return std::all_of(held.begin(), held.end(), [&](const HeldDraft& one) {
      const VersionIndex version = versionOf(one);
      if (version == SearchSpace::none) return false;
      selection[one.name->index] = version;
      return true;
    });
  }

  static VersionIndex versionOf(const HeldDraft& held) {
    for (const Draft* draft : held.name->versions) {
      if (draft->index == SearchSpace::none) continue;
      const auto& variants = *draft->linked;
      const bool isIn = std::any_of(variants.begin(), variants.end(), [&](const auto& variant) {
        return variant.get() == held.linked;
      });
      if (isIn) return draft->index;
    }
    return SearchSpace::none;
  }

  SurveyDrafts& met_;
  SearchSpace& space_;
  std::size_t linkCount_ = 0;
};

}  // namespace

void buildSearchSpace(SurveyDrafts& met, SearchSpace& space) {
  SpaceBuilding(met, space).run();
}

}  // namespace tarn::evolution::pathfinder
