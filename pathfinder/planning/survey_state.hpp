#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/hashing.hpp"
#include "pathfinder/linked_metamodel_cache.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

struct VersionIdHash {
  std::size_t operator()(const VersionId& version) const noexcept { return hashVersion(version); }
};

struct DraftName;

/// A version while the space is surveyed.
struct Draft {
  Draft(DraftName& draftName, const Metamodel& metamodel)
      : name(&draftName), descriptor(&metamodel) {}

  DraftName* name;
  const Metamodel* descriptor;
  std::size_t firstHop = 0;  // of the hops that leave it and do not go against the direction
  std::uint32_t hopCount = 0;
  std::size_t firstTarget = 0;  // of those hops that lead to a version that may be of use
  std::uint32_t targetCount = 0;
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

  explicit DraftsByVersion(const allocator_type& memory) : drafts_(memory), places_(memory) {
    drafts_.reserve(fewDrafts);
  }

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

/// Where a hop of a draft leads.
struct DraftTarget {
  std::uint32_t place;  ///< of the hop, among those of the draft
  Draft* draft;
};

/// A name while the space is surveyed.
struct DraftName {
  using allocator_type = std::pmr::polymorphic_allocator<>;

  DraftName(const std::u16string& nameText, const allocator_type& memory)
      : text(&nameText), targets(memory), versions(memory), byVersion(memory) {}

  const std::u16string* text;
  std::size_t sources = 0;                     // that hold the name
  bool isLinked = false;                       // by a version that can lie on a path
  std::pmr::vector<const Metamodel*> targets;  // what the targets hold under the name
  std::pmr::vector<Draft*> versions;           // in the order in which they were met
  DraftsByVersion byVersion;
  NameIndex index = SearchSpace::none;
};

/// What a baseline of the question holds under a name.
struct HeldDraft {
  DraftName* name;
  const LinkedMetamodel* linked;
};

/// All that a survey has met: drafts of what becomes a search space.
struct SurveyDrafts {
  SurveyDrafts(std::size_t sourceCount, std::size_t targetCount)
      : sources(sourceCount), targets(targetCount) {}

  /// `text` must outlive the survey.
  DraftName& nameOf(const std::u16string& text) {
    return names.try_emplace(text, text).first->second;
  }

  bool isHeldFromStart(const DraftName& name) const { return name.sources == sources.size(); }
  bool isMentionedByEveryTarget(const DraftName& name) const {
    return name.targets.size() == targets.size();
  }

  /// Whether a path may hold the version, as far as its own hops tell.
  bool isOfUse(const Draft& draft) const {
    return draft.leadsToTarget || !isMentionedByEveryTarget(*draft.name);
  }

  std::span<const DraftTarget> targetsOf(const Draft& draft) const {
    return std::span(hopTargets).subspan(draft.firstTarget, draft.targetCount);
  }

  std::pmr::monotonic_buffer_resource memory{65536};
  std::pmr::unordered_map<std::u16string_view, DraftName> names{&memory};
  std::pmr::deque<Draft> drafts{&memory};
  std::vector<DraftTarget> hopTargets;  // those of one draft stand together

  // What the baselines of the question hold, bystanders left out.
  std::vector<std::vector<HeldDraft>> sources;
  std::vector<std::vector<HeldDraft>> targets;
};

}  // namespace tarn::evolution::pathfinder
