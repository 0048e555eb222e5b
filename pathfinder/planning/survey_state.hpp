#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/linking/linked_metamodel_cache.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_failures.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

struct SurveyedName;

/// A version that a survey has met.
struct SurveyedVersion {
  using allocator_type = std::pmr::polymorphic_allocator<>;
  static constexpr std::uint64_t unreached = std::numeric_limits<std::uint64_t>::max();

  SurveyedVersion(SurveyedName& itsName, const Metamodel& metamodel, const allocator_type& memory)
      : name(&itsName), descriptor(&metamodel), hops(memory) {}

  /// Whether a linked metamodel is one that the repository has made of it.
  bool isLinkedAs(const LinkedMetamodel& metamodel) const {
    return linked != nullptr &&
           std::any_of(linked->begin(), linked->end(),
                       [&](const auto& variant) { return variant.get() == &metamodel; });
  }

  SurveyedName* name;
  const Metamodel* descriptor;
  std::uint64_t distance = unreached;  // least weights of hops from where the name can begin
  std::pmr::vector<Hop> hops;          // that leave it and do not go against the direction
  std::size_t firstTarget = 0;         // of those of these hops that lead to a version
  std::uint32_t targetCount = 0;
  const LinkedMetamodels* linked = nullptr;            // null until linked, or if it cannot be
  const ResolvedRequirements* requirements = nullptr;  // null until linked, or if there are none
  bool isAnswer = false;   // what getMetamodel returned when asked for just this version
  bool isEntered = false;  // within reach, as far as the survey goes
  bool isAsked = false;    // for its hops
  bool isLinkTried = false;
  bool areLinksEntered = false;
  bool isUnlinkable = false;    // it conflicts, or the application failed
  bool hasUnknownHops = false;  // the application failed when it was asked for them
  bool isAssumedBest = false;   // although it failed, for the space that is being made
  bool losesHop = false;
  bool leadsToTarget = false;
  std::optional<bool> mayLeadToTargets;
  bool isEntry = false;
  VersionIndex index = SearchSpace::none;
};

/// Versions of one name: scanned while they are few, hashed when they are many.
class SurveyedVersions {
 public:
  using allocator_type = std::pmr::polymorphic_allocator<>;

  explicit SurveyedVersions(const allocator_type& memory) : versions_(memory), byHash_(memory) {
    versions_.reserve(few);
  }

  /// The first one of that number for which `isWanted(version)`; null when there is none.
  template <class IsWanted>
  SurveyedVersion* find(const VersionId& number, const IsWanted& isWanted) const {
    if (versions_.size() <= few) {
      for (SurveyedVersion* version : versions_) {
        if (version->descriptor->version == number && isWanted(*version)) return version;
      }
      return nullptr;
    }
    const auto [begin, end] = byHash_.equal_range(std::hash<VersionId>()(number));
    for (auto entry = begin; entry != end; ++entry) {
      SurveyedVersion* const version = entry->second;
      if (version->descriptor->version == number && isWanted(*version)) return version;
    }
    return nullptr;
  }

  void add(SurveyedVersion& version) {
    versions_.push_back(&version);
    if (versions_.size() <= few) return;
    for (std::size_t i = byHash_.size(); i < versions_.size(); ++i) {
      byHash_.emplace(std::hash<VersionId>()(versions_[i]->descriptor->version), versions_[i]);
    }
  }

 private:
  static constexpr std::size_t few = 8;

  std::pmr::vector<SurveyedVersion*> versions_;
  std::pmr::unordered_multimap<std::size_t, SurveyedVersion*> byHash_;  // of numbers; once many
};

/// Where a hop of a version leads.
struct SurveyedHop {
  std::uint32_t place;  ///< of the hop, among those of the version
  SurveyedVersion* target;
};

/// A name that a survey has met.
struct SurveyedName {
  using allocator_type = std::pmr::polymorphic_allocator<>;

  SurveyedName(const std::u16string& nameText, const allocator_type& memory)
      : text(&nameText), targets(memory), versions(memory), beyond(memory), known(memory) {}

  const std::u16string* text;
  std::size_t sources = 0;                      // that hold the name
  bool isLinked = false;                        // by a version that can lie on a path
  std::pmr::vector<const Metamodel*> targets;   // what the targets hold under the name
  std::pmr::vector<SurveyedVersion*> versions;  // entered, in the order of their distance
  std::pmr::vector<std::pair<std::uint64_t, SurveyedVersion*>> waiting;  // a heap, by distance
  std::pmr::vector<SurveyedVersion*> beyond;  // the radius: to be entered, or asked for hops
  std::uint64_t radius = 0;  // how far the survey goes, where it is not without a limit
  SurveyedVersions known;
  NameIndex index = SearchSpace::none;
  VersionIndex unknown = SearchSpace::none;  // stands for what unknown hops may lead to
};

/// What a baseline of the question holds under a name.
struct SurveyedEntry {
  SurveyedName* name;
  const LinkedMetamodel* linked;
};

/// A source of the question, irrelevant names left out.
struct SurveyedSource {
  std::vector<SurveyedEntry> entries;
  bool isRegular = true;  ///< whether it is a consistent baseline of the repository's own making
};

/// A target of the question, irrelevant names left out, and closed under its links.
struct SurveyedTarget {
  std::vector<SurveyedEntry> entries;

  /// What closes it, and of its entries those that link that.
  struct Addition {
    const LinkedMetamodel* linked;
    std::vector<const LinkedMetamodel*> linking;
  };
  std::unordered_map<std::u16string_view, Addition> added;
  std::vector<SurveyedName*> absent;  ///< names that it must not hold
  bool isPossible = true;
};

/// All that a survey has met: what becomes a search space.
struct SurveyState {
  explicit SurveyState(const SearchQuestion& itsQuestion)
      : question(itsQuestion),
        sources(itsQuestion.sources.size()),
        targets(itsQuestion.targets.size()) {}
  SurveyState(const SurveyState&) = delete;
  SurveyState& operator=(const SurveyState&) = delete;
  ~SurveyState() = default;

  /// `text` must outlive the survey.
  SurveyedName& nameOf(const std::u16string& text) {
    return names.try_emplace(text, text).first->second;
  }

  /// What a target holds by itself under a name; null for nothing.
  const LinkedMetamodel* heldBy(std::size_t target, const std::u16string& name) const {
    const auto& metamodels = question.targets[target].metamodels;
    const auto held = metamodels.find(name);
    return held == metamodels.end() ? nullptr : held->second.get();
  }

  /// The same of a target that is closed under its links.
  const LinkedMetamodel* heldByClosed(std::size_t target, const std::u16string& name) const {
    if (const LinkedMetamodel* held = heldBy(target, name)) return held;
    const auto& added = targets[target].added;
    const auto held = added.find(name);
    return held == added.end() ? nullptr : held->second.linked;
  }

  bool isHeldFromStart(const SurveyedName& name) const { return name.sources == sources.size(); }
  bool isMentionedByEveryTarget(const SurveyedName& name) const {
    return name.targets.size() == targets.size();
  }

  /// Whether a path may hold the version, as far as its own hops tell.
  bool isOfUse(const SurveyedVersion& version) const {
    return isEverythingOfUse || version.leadsToTarget || !isMentionedByEveryTarget(*version.name);
  }

  std::span<const SurveyedHop> targetsOf(const SurveyedVersion& version) const {
    return std::span(hopTargets).subspan(version.firstTarget, version.targetCount);
  }

  const SearchQuestion& question;
  std::pmr::monotonic_buffer_resource memory{65536};
  std::pmr::unordered_map<std::u16string_view, SurveyedName> names{&memory};
  std::pmr::deque<SurveyedVersion> versions{&memory};
  std::pmr::deque<Metamodel> descriptors{&memory};
  std::vector<SurveyedHop> hopTargets;  // those of one version stand together
  SurveyFailures failures;

  /// The question has no search space: a source holds a null pointer, or a linked metamodel under
  /// another name than its own, or the application answers a name with a metamodel of another name.
  bool isUnfit = false;
  bool isEverythingOfUse = false;
  std::vector<SurveyedSource> sources;
  std::vector<SurveyedTarget> targets;
};

}  // namespace tarn::evolution::pathfinder
