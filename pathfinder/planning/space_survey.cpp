#include "pathfinder/planning/space_survey.hpp"

#include <algorithm>
#include <memory_resource>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "pathfinder/covering_link.hpp"
#include "pathfinder/link_attempt.hpp"
#include "pathfinder/planning/irrelevant_names.hpp"
#include "pathfinder/planning/space_building.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class SpaceSurvey {
 public:
  explicit SpaceSurvey(const SearchQuestion& question) : question_(question) {}

  std::unique_ptr<const SearchSpace> run() {
    enterTargets();
    for (const KnownMetamodel& known : question_.known) {
      if (!bystanders_.contain(*known.linked->front())) noteAnswer(known);
    }
    if (!enterSources()) return nullptr;
    do {
      askForHops();
      if (isUnfit_) return nullptr;
      markWhatLeadsToTargets();
      linkWhatIsOfUse();
      if (!isEveryNameHeld()) takeAllUp();
    } while (!unasked_.empty());
    if (isUnfit_) return nullptr;
    buildSearchSpace(met_, *space_);
    return std::move(space_);
  }

 private:
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
    Draft& draft = met_.drafts.emplace_back(name, descriptor);
    name.byVersion.add(draft);
    return draft;
  }

  /// Takes a version that is within reach into the space.
  void enter(Draft& draft) {
    if (std::exchange(draft.isEntered, true)) return;
    draft.name->versions.push_back(&draft);
    unasked_.push_back(&draft);
  }

  /// Takes a bystander up, because it is involved after all.
  void takeUp(const std::u16string& name, const LinkedMetamodel& linked) {
    bystanders_.remove(linked);
    for (std::size_t i = 0; i < question_.targets.size(); ++i) {
      if (question_.targets[i].metamodels.contains(name)) enterTarget(i, name, linked);
    }
    for (std::size_t i = 0; i < question_.sources.size(); ++i) enterSource(i, name, linked);
  }

  void takeAllUp() {
    if (bystanders_.empty()) return;
    for (const auto& [name, linked] : question_.sources.front().metamodels) {
      if (bystanders_.contain(*linked)) takeUp(name, *linked);
    }
  }

  /// Whether nothing has to be, or can be, brought in.
  bool isEveryNameHeld() const {
    return std::all_of(met_.names.begin(), met_.names.end(),
                       [this](const auto& entry) { return met_.isHeldFromStart(entry.second); });
  }

  void enterTargets() {
    for (std::size_t i = 0; i < question_.targets.size(); ++i) {
      const auto& metamodels = question_.targets[i].metamodels;
      met_.targets[i].reserve(metamodels.size());
      for (const auto& [name, linked] : metamodels) {
        isUnfit_ |= !linked;  // includes any baseline that lacks the name
        if (linked && !bystanders_.contain(*linked)) enterTarget(i, name, *linked);
      }
    }
  }

  void enterTarget(std::size_t target, const std::u16string& key, const LinkedMetamodel& linked) {
    DraftName& name = met_.nameOf(key);
    name.targets.push_back(&linked);
    met_.targets[target].push_back({&name, &linked});
  }

  void noteAnswer(const KnownMetamodel& known) {
    if (known.metamodel->name != *known.name) return;  // not fit; found out if a hop leads there
    DraftName& name = met_.nameOf(*known.name);
    Draft& draft = draftOf(name, *known.metamodel);
    draft.linked = known.linked;
    draft.isLinkTried = true;
    noteAnswer(name, *known.version, &draft);
  }

  void noteAnswer(DraftName& name, const VersionId& version, Draft* draft) {
    if (draft != nullptr && draft->descriptor->version == version) {
      draft->isAnswer = true;
    } else {
      otherAnswers_[&name].emplace(version, draft);
    }
  }

  bool enterSources() {
    for (std::size_t i = 0; i < question_.sources.size(); ++i) {
      const auto& metamodels = question_.sources[i].metamodels;
      met_.sources[i].reserve(metamodels.size());
      for (const auto& [name, linked] : metamodels) {
        if (!linked) return false;
        if (!bystanders_.contain(*linked) && !enterSource(i, name, *linked)) return false;
      }
    }
    return true;
  }

  bool enterSource(std::size_t source, const std::u16string& key, const LinkedMetamodel& linked) {
    if (linked.name != key || !holdsLinksOf(question_.sources[source], linked)) return false;
    DraftName& name = met_.nameOf(key);
    ++name.sources;
    met_.sources[source].push_back({&name, &linked});
    Draft& draft = draftOf(name, static_cast<const Metamodel&>(linked));
    enter(draft);
    link(draft);
    return draft.linked != nullptr &&
           std::any_of(draft.linked->begin(), draft.linked->end(),
                       [&](const auto& variant) { return variant.get() == &linked; });
  }

  static bool holdsLinksOf(const VersionBaseline& source, const LinkedMetamodel& linked) {
    const auto holds = [&](const LinkedMetamodel& link) {
      const auto held = source.metamodels.find(link.name);
      return held != source.metamodels.end() && held->second.get() == &link;
    };
    // The covering link is asked for its own.
    if (const LinkedMetamodel* covering = coveringLink(linked)) return holds(*covering);
    return std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(),
                       [&](const auto& link) { return holds(*link.second); });
  }

  void askForHops() {
    while (!unasked_.empty()) {
      Draft& draft = *unasked_.back();
      unasked_.pop_back();
      hops_.clear();
      question_.repository.findHops(*draft.name->text, draft.descriptor->version, hops_);
      draft.firstHop = space_->hops.size();
      draft.firstTarget = met_.hopTargets.size();
      for (Hop& hop : hops_) follow(draft, hop);
    }
  }

  /// Keeps a hop of a version unless it goes against the direction; enters the version that it
  /// leads to.
  void follow(Draft& draft, Hop& hop) {
    // Hop collection looks the target up under the hop's own name, which may differ from the key.
    const bool hasOwnName = hop.name == *draft.name->text;
    Draft* target = hasOwnName ? lookUp(*draft.name, hop.to) : nullptr;
    if (question_.direction != VersionRepository::Unknown) {
      std::optional<Metamodel> other;
      if (!hasOwnName) other = question_.repository.getMetamodel(hop.name, hop.to);
      if (target == nullptr && !other) {
        draft.losesHop = true;
        return;
      }
      if (goesAgainstDirection(draft, target != nullptr ? *target->descriptor : *other)) return;
    }
    if (!hasOwnName) target = lookUp(*draft.name, hop.to);
    if (target != nullptr && !leadsAwayFromTargets(*target)) {
      enter(*target);
      met_.hopTargets.push_back({draft.hopCount, target});
      ++draft.targetCount;
    }
    ++draft.hopCount;
    space_->hops.push_back(std::move(hop));
  }

  bool goesAgainstDirection(const Draft& draft, const Metamodel& target) const {
    return VersionRepository::areDirectionsInconsistent(
        question_.direction, question_.repository.getDirection(*draft.descriptor, target));
  }

  /// The version that a hop of this name leads to; null when the application has none.
  Draft* lookUp(DraftName& name, const VersionId& version) {
    Draft* answer = name.byVersion.find(version, [](const Draft& draft) { return draft.isAnswer; });
    if (answer != nullptr) return answer;
    if (const auto others = otherAnswers_.find(&name); others != otherAnswers_.end()) {
      const auto known = others->second.find(version);
      if (known != others->second.end()) return known->second;
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
    if (question_.direction == VersionRepository::Unknown || !met_.isMentionedByEveryTarget(name)) {
      return false;
    }
    return std::all_of(name.targets.begin(), name.targets.end(), [&](const Metamodel* target) {
      return VersionRepository::areDirectionsInconsistent(
          question_.direction, question_.repository.getDirection(*draft.descriptor, *target));
    });
  }

  void markWhatLeadsToTargets() {
    for (auto& [text, name] : met_.names) {
      if (!met_.isMentionedByEveryTarget(name)) continue;
      for (const Metamodel* target : name.targets) {
        for (Draft* draft : name.versions) draft->leadsToTarget |= *draft->descriptor == *target;
      }
      spreadBackwards(name);
    }
  }

  void spreadBackwards(DraftName& name) const {
    for (bool changed = true; changed;) {
      changed = false;
      // Versions are met from the sources on, so most are marked in the first round.
      for (std::size_t i = name.versions.size(); i-- > 0;) {
        Draft& draft = *name.versions[i];
        if (draft.leadsToTarget) continue;
        const auto targets = met_.targetsOf(draft);
        draft.leadsToTarget =
            std::any_of(targets.begin(), targets.end(),
                        [](const DraftTarget& target) { return target.draft->leadsToTarget; });
        changed |= draft.leadsToTarget;
      }
    }
  }

  /// Links versions that can lie on a path, and enters those that their links bring in.
  void linkWhatIsOfUse() {
    // New drafts may be added on the way.
    for (std::size_t i = 0; i < met_.drafts.size(); ++i) {  // NOLINT(modernize-loop-convert)
      Draft& draft = met_.drafts[i];
      if (!draft.isEntered || !met_.isOfUse(draft) || draft.areLinksEntered) continue;
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
    if (!std::exchange(draft.isLinkTried, true))
      draft.linked = tryLink(question_.repository, *draft.descriptor);
  }

  void enterLinks(const LinkedMetamodel& variant) {
    const LinkedMetamodel* linking = &variant;
    while (const LinkedMetamodel* covering = coveringLink(*linking)) {
      if (!enterLink(*covering)) return;
      linking = covering;
    }
    for (const auto& [text, linked] : linking->linkedMetamodels) enterLink(*linked);
  }

  /// False for one that has been entered before, with all that it links.
  bool enterLink(const LinkedMetamodel& linked) {
    if (!linksSeen_.insert(&linked).second) return false;
    if (const auto* bystander = bystanders_.find(linked.name)) {
      takeUp(bystander->first, *bystander->second);
    }
    DraftName& name = met_.nameOf(linked.name);
    name.isLinked = true;
    if (met_.isHeldFromStart(name)) return true;  // only hops move it
    Draft& entry = draftOf(name, static_cast<const Metamodel&>(linked));
    entry.isEntry = true;
    enter(entry);
    return true;
  }

  const SearchQuestion& question_;
  std::unique_ptr<SearchSpace> space_ = std::make_unique<SearchSpace>();
  SurveyDrafts met_{question_.sources.size(), question_.targets.size()};
  std::pmr::vector<Draft*> unasked_{&met_.memory};
  std::vector<Hop> hops_;  // of the version that is being asked for

  /// What `getMetamodel` answered with another version than the one asked for, or with none.
  std::unordered_map<const DraftName*, std::unordered_map<VersionId, Draft*, VersionIdHash>>
      otherAnswers_;
  std::pmr::unordered_set<const LinkedMetamodel*> linksSeen_{&met_.memory};
  Bystanders bystanders_{question_, &met_.memory};
  bool isUnfit_ = false;
};

}  // namespace

std::unique_ptr<const SearchSpace> surveySearchSpace(const SearchQuestion& question) {
  return SpaceSurvey(question).run();
}

}  // namespace tarn::evolution::pathfinder
