#include "pathfinder/space_survey.hpp"

#include <algorithm>
#include <deque>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/hashing.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using LinkedMetamodels = std::vector<std::shared_ptr<LinkedMetamodel>>;
using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

struct VersionIdHash {
  std::size_t operator()(const VersionId& version) const noexcept { return hashVersion(version); }
};

struct DraftName;

/// A version while the space is surveyed.
struct Draft {
  using allocator_type = std::pmr::polymorphic_allocator<>;

  Draft(DraftName& draftName, const Metamodel& metamodel, const allocator_type& memory)
      : name(&draftName), descriptor(&metamodel), targets(memory) {}

  DraftName* name;
  const Metamodel* descriptor;
  std::size_t firstHop = 0;  // of the hops that leave it and do not go against the direction
  std::size_t hopCount = 0;
  std::pmr::vector<std::pair<std::uint32_t, Draft*>> targets;  // a hop's place and where it leads
  const LinkedMetamodels* linked = nullptr;  // null until linked, or if it cannot be
  bool isAnswer = false;  // what getMetamodel returned when asked for just this version
  bool isLinkTried = false;
  bool losesHop = false;
  bool isEntered = false;
  bool leadsToTarget = false;
  bool areLinksEntered = false;
  bool isEntry = false;
  VersionIndex index = SearchSpace::none;
};

/// Versions of one name: scanned while they are few, hashed when they are many.
class DraftsByVersion {
 public:
  using allocator_type = std::pmr::polymorphic_allocator<>;

  explicit DraftsByVersion(const allocator_type& memory) : drafts_(memory), places_(memory) {}

  /// The first draft of that version for which `isWanted(draft)`; null when there is none.
  template <class IsWanted>
  Draft* find(const VersionId& version, const IsWanted& isWanted) const {
    if (drafts_.size() <= fewDrafts) {
      for (Draft* draft : drafts_) {
        if (draft->descriptor->version == version && isWanted(*draft)) return draft;
      }
      return nullptr;
    }
    const auto [begin, end] = places_.equal_range(version);
    for (auto place = begin; place != end; ++place) {
      if (isWanted(*place->second)) return place->second;
    }
    return nullptr;
  }

  void add(Draft& draft) {
    drafts_.push_back(&draft);
    if (drafts_.size() <= fewDrafts) return;
    for (std::size_t i = places_.size(); i < drafts_.size(); ++i) {
      places_.emplace(drafts_[i]->descriptor->version, drafts_[i]);
    }
  }

 private:
  static constexpr std::size_t fewDrafts = 8;

  std::pmr::vector<Draft*> drafts_;
  std::pmr::unordered_multimap<VersionId, Draft*, VersionIdHash> places_;  // once they are many
};

struct DraftName {
  using allocator_type = std::pmr::polymorphic_allocator<>;

  DraftName(const std::u16string& nameText, const allocator_type& memory)
      : text(&nameText), targets(memory), versions(memory), byVersion(memory), answers(memory) {}

  const std::u16string* text;
  std::size_t sources = 0;                     // that hold the name
  std::pmr::vector<const Metamodel*> targets;  // what the targets hold under the name
  std::pmr::vector<Draft*> versions;           // in the order in which they were met
  DraftsByVersion byVersion;
  std::pmr::unordered_map<VersionId, Draft*, VersionIdHash>
      answers;  // of getMetamodel, that are no answer with just the version asked for; null: none
  NameIndex index = SearchSpace::none;
};

class SpaceSurvey {
 public:
  explicit SpaceSurvey(const SearchQuestion& question) : question_(question) {}

  std::unique_ptr<const SearchSpace> run() {
    for (const VersionBaseline& target : question_.targets) enterTarget(target);
    for (const KnownMetamodel& known : question_.known) noteAnswer(known);
    for (const VersionBaseline& source : question_.sources) {
      if (!enterSource(source)) return nullptr;
    }
    while (!unasked_.empty()) {
      askForHops();
      if (isUnfit_) return nullptr;
      markWhatLeadsToTargets();
      linkWhatIsOfUse();
    }
    if (isUnfit_) return nullptr;
    return build();
  }

 private:
  /// `text` must outlive the survey.
  DraftName& nameOf(const std::u16string& text) {
    return names_.try_emplace(text, text).first->second;
  }

  Draft* known(const DraftName& name, const Metamodel& descriptor) const {
    return name.byVersion.find(descriptor.version, [&](const Draft& draft) {
      return draft.descriptor == &descriptor || *draft.descriptor == descriptor;
    });
  }

  /// The version of a descriptor that lasts as long as the space.
  Draft& draftOf(DraftName& name, const Metamodel& descriptor) {
    Draft* draft = known(name, descriptor);
    return draft != nullptr ? *draft : addDraft(name, descriptor);
  }

  Draft& draftOf(DraftName& name, Metamodel&& descriptor) {
    Draft* draft = known(name, descriptor);
    if (draft != nullptr) return *draft;
    return addDraft(name, space_->descriptors.emplace_back(std::move(descriptor)));
  }

  Draft& addDraft(DraftName& name, const Metamodel& descriptor) {
    Draft& draft = drafts_.emplace_back(name, descriptor);
    name.byVersion.add(draft);
    return draft;
  }

  /// Takes a version that is within reach into the space.
  void enter(Draft& draft) {
    if (std::exchange(draft.isEntered, true)) return;
    draft.name->versions.push_back(&draft);
    unasked_.push_back(&draft);
  }

  void enterTarget(const VersionBaseline& target) {
    for (const auto& [name, linked] : target.metamodels) {
      if (linked) nameOf(name).targets.push_back(linked.get());
    }
  }

  void noteAnswer(const KnownMetamodel& known) {
    if (known.metamodel->name != *known.name) return;  // not fit; found out if a hop leads there
    DraftName& name = nameOf(*known.name);
    noteAnswer(name, *known.version, &draftOf(name, *known.metamodel));
  }

  static void noteAnswer(DraftName& name, const VersionId& version, Draft* draft) {
    if (draft != nullptr && draft->descriptor->version == version) {
      draft->isAnswer = true;
    } else {
      name.answers.emplace(version, draft);
    }
  }

  bool enterSource(const VersionBaseline& source) {
    return std::all_of(source.metamodels.begin(), source.metamodels.end(), [&](const auto& entry) {
      const auto& [key, linked] = entry;
      if (!linked || linked->name != key || !holdsLinksOf(source, *linked)) return false;
      DraftName& name = nameOf(key);
      ++name.sources;
      Draft& draft = draftOf(name, static_cast<const Metamodel&>(*linked));
      enter(draft);
      link(draft);
      return draft.linked != nullptr &&
             std::find(draft.linked->begin(), draft.linked->end(), linked) != draft.linked->end();
    });
  }

  static bool holdsLinksOf(const VersionBaseline& source, const LinkedMetamodel& linked) {
    return std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(),
                       [&](const auto& link) {
                         const auto held = source.metamodels.find(link.first);
                         return held != source.metamodels.end() && held->second == link.second;
                       });
  }

  void askForHops() {
    while (!unasked_.empty()) {
      Draft& draft = *unasked_.back();
      unasked_.pop_back();
      hops_.clear();
      question_.repository.findHops(*draft.name->text, draft.descriptor->version, hops_);
      if (question_.direction != VersionRepository::Unknown) dropHopsAgainstDirection(draft);
      for (std::uint32_t place = 0; place < hops_.size(); ++place) {
        Draft* target = lookUp(*draft.name, hops_[place].to);
        if (target == nullptr) continue;
        if (leadsAwayFromTargets(*target)) continue;
        enter(*target);
        draft.targets.emplace_back(place, target);
      }
      draft.firstHop = space_->hops.size();
      draft.hopCount = hops_.size();
      std::move(hops_.begin(), hops_.end(), std::back_inserter(space_->hops));
    }
  }

  /// The version that a hop of this name leads to; null when the application has none.
  Draft* lookUp(DraftName& name, const VersionId& version) {
    Draft* answer = name.byVersion.find(version, [](const Draft& draft) { return draft.isAnswer; });
    if (answer != nullptr) return answer;
    if (!name.answers.empty()) {
      const auto known = name.answers.find(version);
      if (known != name.answers.end()) return known->second;
    }
    Draft* draft = ask(name, version);
    noteAnswer(name, version, draft);
    return draft;
  }

  Draft* ask(DraftName& name, const VersionId& version) {
    std::optional<Metamodel> found = question_.repository.getMetamodel(*name.text, version);
    if (!found) return nullptr;
    if (found->name == *name.text) return &draftOf(name, *std::move(found));
    isUnfit_ = true;
    return nullptr;
  }

  /// Whether no hops in the direction asked for can lead from a version to what a target holds:
  /// hops that do not go against a direction never lead back behind where they began.
  bool leadsAwayFromTargets(const Draft& draft) const {
    const DraftName& name = *draft.name;
    if (question_.direction == VersionRepository::Unknown || !isMentionedByEveryTarget(name)) {
      return false;
    }
    return std::all_of(name.targets.begin(), name.targets.end(), [&](const Metamodel* target) {
      return VersionRepository::areDirectionsInconsistent(
          question_.direction, question_.repository.getDirection(*draft.descriptor, *target));
    });
  }

  void dropHopsAgainstDirection(Draft& draft) {
    std::erase_if(hops_, [&](const Hop& hop) {
      // Hop collection looks the target up under the hop's own name, which may differ from the key.
      std::optional<Metamodel> other;
      const Metamodel* target = nullptr;
      if (hop.name == *draft.name->text) {
        const Draft* known = lookUp(*draft.name, hop.to);
        if (known != nullptr) target = known->descriptor;
      } else if ((other = question_.repository.getMetamodel(hop.name, hop.to))) {
        target = &*other;
      }
      if (target == nullptr) {
        draft.losesHop = true;
        return true;
      }
      return VersionRepository::areDirectionsInconsistent(
          question_.direction, question_.repository.getDirection(*draft.descriptor, *target));
    });
  }

  bool isMentionedByEveryTarget(const DraftName& name) const {
    return name.targets.size() == question_.targets.size();
  }

  void markWhatLeadsToTargets() {
    for (auto& [text, name] : names_) {
      if (!isMentionedByEveryTarget(name)) continue;
      for (const Metamodel* target : name.targets) {
        for (Draft* draft : name.versions) draft->leadsToTarget |= *draft->descriptor == *target;
      }
      spreadBackwards(name);
    }
  }

  static void spreadBackwards(DraftName& name) {
    for (bool changed = true; changed;) {
      changed = false;
      // Versions are met from the sources on, so most are marked in the first round.
      for (std::size_t i = name.versions.size(); i-- > 0;) {
        Draft& draft = *name.versions[i];
        if (draft.leadsToTarget) continue;
        draft.leadsToTarget =
            std::any_of(draft.targets.begin(), draft.targets.end(),
                        [](const auto& target) { return target.second->leadsToTarget; });
        changed |= draft.leadsToTarget;
      }
    }
  }

  bool isOfUse(const Draft& draft) const {
    return draft.leadsToTarget || !isMentionedByEveryTarget(*draft.name);
  }

  /// Links versions that can lie on a path, and enters those that their links bring in.
  void linkWhatIsOfUse() {
    // New drafts may be added on the way.
    for (std::size_t i = 0; i < drafts_.size(); ++i) {  // NOLINT(modernize-loop-convert)
      Draft& draft = drafts_[i];
      if (!draft.isEntered || !isOfUse(draft) || draft.areLinksEntered) continue;
      link(draft);
      draft.areLinksEntered = true;
      if (draft.linked == nullptr) continue;
      for (const auto& variant : *draft.linked) {
        isUnfit_ |= variant->linkedMetamodels.contains(variant->name);
        enterLinks(*variant);
      }
    }
  }

  void link(Draft& draft) {
    if (std::exchange(draft.isLinkTried, true)) return;
    try {
      draft.linked = &question_.repository.getLinkedMetamodels(*draft.descriptor);
    } catch (const Conflict&) {
      // It can never be held. An attempt to hold it, should there be one, reports the conflict.
    }
  }

  void enterLinks(const LinkedMetamodel& variant) {
    for (const auto& [text, linked] : variant.linkedMetamodels) {
      if (!linksSeen_.insert(linked.get()).second) continue;
      DraftName& name = nameOf(text);
      if (name.sources == question_.sources.size())
        continue;  // held from the start: only hops move it
      Draft& entry = draftOf(name, static_cast<const Metamodel&>(*linked));
      entry.isEntry = true;
      enter(entry);
    }
  }

  std::unique_ptr<const SearchSpace> build() {
    space_->names.reserve(names_.size());
    space_->versions.reserve(drafts_.size() + names_.size());
    space_->variants.reserve(drafts_.size());
    space_->variantOf.reserve(drafts_.size());
    std::vector<DraftName*> ordered;
    for (auto& [text, name] : names_) {
      if (!name.versions.empty()) ordered.push_back(&name);
    }
    std::sort(ordered.begin(), ordered.end(), [](const DraftName* left, const DraftName* right) {
      return *left->text < *right->text;
    });
    for (DraftName* name : ordered) addName(*name);
    addMoves();
    addClosures();
    space_->isUnambiguous = std::all_of(
        space_->versions.begin(), space_->versions.end(), [](const SearchSpace::Version& version) {
          return version.linked != nullptr && version.linked->size() == 1;
        });
    return std::move(space_);
  }

  void addName(DraftName& name) {
    name.index = static_cast<NameIndex>(space_->names.size());
    const auto first = static_cast<VersionIndex>(space_->versions.size());
    for (Draft* draft : name.versions) {
      if (draft->linked == nullptr || !isOfUse(*draft)) continue;
      draft->index = static_cast<VersionIndex>(space_->versions.size());
      SearchSpace::Version& version = space_->versions.emplace_back();
      version.name = name.index;
      version.descriptor = draft->descriptor;
      version.linked = draft->linked;
      version.firstVariant = static_cast<VariantIndex>(space_->variants.size());
      version.hops = std::span(space_->hops).subspan(draft->firstHop, draft->hopCount);
      version.losesHop = draft->losesHop;
      version.isEntry = draft->isEntry;
      for (const auto& linked : *draft->linked) addVariant(linked.get(), draft->index);
    }
    SearchSpace::Name& added = space_->names.emplace_back();
    added.text = *name.text;
    added.first = first;
    if (name.sources < question_.sources.size()) {
      added.absent = static_cast<VersionIndex>(space_->versions.size());
      space_->versions.emplace_back().name = name.index;
    }
    added.end = static_cast<VersionIndex>(space_->versions.size());
  }

  VariantIndex addVariant(const LinkedMetamodel* linked, VersionIndex version) {
    const auto index = static_cast<VariantIndex>(space_->variants.size());
    space_->variants.emplace_back().version = version;
    space_->variantOf.emplace(linked, index);
    return index;
  }

  void addMoves() {
    std::size_t count = 0;
    for (const Draft& draft : drafts_) count += draft.targets.size();
    space_->moves.reserve(count);  // versions point into it
    for (const Draft& draft : drafts_) {
      if (draft.index == SearchSpace::none) continue;
      SearchSpace::Version& version = space_->versions[draft.index];
      const std::size_t first = space_->moves.size();
      for (const auto& [place, target] : draft.targets) {
        if (target->index == SearchSpace::none) continue;
        space_->moves.push_back({target->index, version.hops[place].expensive, place});
      }
      version.moves = std::span(space_->moves).subspan(first);
    }
  }

  void addClosures() {
    std::size_t count = 0;
    for (const auto& [linked, variant] : space_->variantOf)
      count += linked->linkedMetamodels.size() + 1;
    space_->links.reserve(count);  // variants point into it
    for (const Draft& draft : drafts_) {
      if (draft.index == SearchSpace::none) continue;
      VariantIndex variant = space_->versions[draft.index].firstVariant;
      for (const auto& linked : *draft.linked) addClosure(variant++, *linked);
    }
  }

  void addClosure(VariantIndex variant, const LinkedMetamodel& linked) {
    const std::size_t first = space_->links.size();
    space_->links.push_back({space_->versions[space_->variants[variant].version].name, variant});
    for (const auto& [text, link] : linked.linkedMetamodels) {
      space_->links.push_back(linkTo(text, link.get()));
    }
    const auto closure = std::span(space_->links).subspan(first);
    std::sort(closure.begin(), closure.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    space_->variants[variant].closure = closure;
  }

  SearchSpace::Link linkTo(const std::u16string& text, const LinkedMetamodel* linked) {
    const auto known = space_->variantOf.find(linked);
    if (known != space_->variantOf.end()) {
      const VersionIndex version = space_->variants[known->second].version;
      if (version != SearchSpace::none) return {space_->versions[version].name, known->second};
      return {nameOf(text).index, known->second};
    }
    return {nameOf(text).index, addVariant(linked, SearchSpace::none)};
  }

  const SearchQuestion& question_;
  std::unique_ptr<SearchSpace> space_ = std::make_unique<SearchSpace>();
  std::pmr::monotonic_buffer_resource memory_;
  std::pmr::unordered_map<std::u16string_view, DraftName> names_{&memory_};
  std::pmr::deque<Draft> drafts_{&memory_};
  std::pmr::vector<Draft*> unasked_{&memory_};
  std::vector<Hop> hops_;  // of the version that is being asked for
  std::pmr::unordered_set<const LinkedMetamodel*> linksSeen_{&memory_};
  bool isUnfit_ = false;
};

}  // namespace

std::unique_ptr<const SearchSpace> surveySearchSpace(const SearchQuestion& question) {
  return SpaceSurvey(question).run();
}

}  // namespace tarn::evolution::pathfinder
