// Depth of the product, one name at a time: the consistent baselines of the names so far are each
// extended by every candidate of the next name that they admit.
//
// Invariants: every partial baseline is consistent, and the list is in the order of the answer,
// the first name the most significant. A name that a link has brought in takes no candidate of its
// own; the link must be among its candidates. A partial baseline that is extended just once is
// moved, not copied.
//
// Cost: the partial baselines, times the candidates of the next name.

#include "pathfinder/linking/baseline_combination.hpp"

#include <algorithm>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/memory_ceiling.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/covering_link.hpp"
#include "pathfinder/values/error_text.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using Candidates = std::vector<std::shared_ptr<LinkedMetamodel>>;

void refuseNull(const std::shared_ptr<LinkedMetamodel>& candidate, const std::u16string& name) {
  if (candidate) return;
  throw std::invalid_argument("There is a null pointer among the alternatives for metamodel \"" +
                              shownText(name) + "\".");
}

/// One baseline for each candidate of the first name.
std::vector<VersionBaseline> startWith(const Alternatives& first) {
  std::vector<VersionBaseline> result;
  result.reserve(first.candidates->size());
  for (const auto& candidate : *first.candidates) {
    refuseNull(candidate, *first.name);
    auto baseline = VersionBaseline::create({candidate});
    if (baseline) result.push_back(*std::move(baseline));
  }
  return result;
}

/// Membership of one name's candidates: by scanning as long as they are few, by hash when they are
/// many.
class CandidateSet {
 public:
  explicit CandidateSet(const Candidates& candidates) : candidates_(candidates) {
    if (candidates.size() > fewCandidates) {
      for (const auto& candidate : candidates) hashed_.insert(candidate.get());
    }
  }

  bool contains(const std::shared_ptr<LinkedMetamodel>& candidate) const {
    if (!hashed_.empty()) return hashed_.contains(candidate.get());
    return std::find(candidates_.begin(), candidates_.end(), candidate) != candidates_.end();
  }

 private:
  static constexpr std::size_t fewCandidates = 8;

  const Candidates& candidates_;
  std::unordered_set<const LinkedMetamodel*> hashed_;
};

/// A rough measure of what a baseline of so many metamodels takes.
constexpr std::size_t bytesOf(std::size_t metamodels) {
  return sizeof(VersionBaseline) + metamodels * 80;
}

/// Refuses to extend partial baselines by so many candidates when that makes more than fit. Counts
/// them only where there might be.
void refuseTooMany(const std::vector<VersionBaseline>& partial, const Alternatives& next,
                   std::size_t names) {
  const std::size_t bytesEach = bytesOf(partial.front().metamodels.size() + 1);
  const Candidates& candidates = *next.candidates;
  std::size_t most = 0;
  const bool mayBeMany = __builtin_mul_overflow(partial.size(), candidates.size(), &most) ||
                         most > surelyFit(bytesEach);
  if (!mayBeMany) return;
  std::size_t count = 0;
  for (const VersionBaseline& baseline : partial) {
    count += static_cast<std::size_t>(std::count_if(
        candidates.begin(), candidates.end(),
        [&](const auto& candidate) { return candidate && baseline.admits(candidate); }));
    refuseMoreThanFits(count, bytesEach, "A selection of " + std::to_string(names) + " metamodels");
  }
}

/// Appends to `result` every way to give `baseline`, which is used up, one of the candidates.
void extend(VersionBaseline&& baseline, const Alternatives& name,
            std::vector<VersionBaseline>& result) {
  const Candidates& candidates = *name.candidates;
  const auto isAdmitted = [&](const auto& candidate) {
    refuseNull(candidate, *name.name);
    return baseline.admits(candidate);
  };
  auto candidate = std::find_if(candidates.begin(), candidates.end(), isAdmitted);
  while (candidate != candidates.end()) {
    const auto next = std::find_if(candidate + 1, candidates.end(), isAdmitted);
    // Only what another candidate is given as well need be copied.
    if (next == candidates.end()) {
      // NOLINTNEXTLINE(bugprone-use-after-move): there is no further round
      result.push_back(std::move(baseline));
    } else {
      result.push_back(baseline);
    }
    result.back().tryEmplace(*candidate);
    candidate = next;
  }
}

/// Whether each linked metamodel that a baseline of these candidates holds has all that it links
/// beside it. A candidate that links another version of its own name does not: the baseline holds
/// the candidate under that name.
bool areLinksHeld(const std::vector<Alternatives>& alternatives, Links links) {
  const auto linksOwnName = [](const auto& candidate) {
    return candidate && candidate->linkedMetamodels.contains(candidate->name);
  };
  return links == Links::Closed &&
         std::all_of(alternatives.begin(), alternatives.end(), [&](const Alternatives& name) {
           return std::none_of(name.candidates->begin(), name.candidates->end(), linksOwnName);
         });
}

/// Gives the baseline the only candidate of a name, with its links; false, and the baseline is
/// spoilt, when it holds another linked metamodel under one of their names.
bool complete(VersionBaseline& baseline, const std::shared_ptr<LinkedMetamodel>& candidate,
              bool haveLinks) {
  const auto [own, isNew] = baseline.metamodels.try_emplace(candidate->name, candidate);
  if (!isNew) return own->second == candidate;
  const auto& links = candidate->linkedMetamodels;
  const LinkedMetamodel* covering = haveLinks ? coveringLink(*candidate) : nullptr;
  if (covering != nullptr) {
    const auto held = baseline.metamodels.find(covering->name);
    if (held != baseline.metamodels.end() && held->second.get() == covering) return true;
  }
  return std::all_of(links.begin(), links.end(), [&](const auto& link) {
    if (!link.second) return true;
    if (link.first == candidate->name) return true;  // under which the candidate itself is held
    const auto [held, isAdded] = baseline.metamodels.try_emplace(link.first, link.second);
    return isAdded || held->second == link.second;
  });
}

/// Gives each baseline the only candidate of a name; drops those that disagree with it.
void keepComplete(std::vector<VersionBaseline>& partial,
                  const std::shared_ptr<LinkedMetamodel>& candidate, bool haveLinks) {
  auto kept = partial.begin();
  for (auto baseline = partial.begin(); baseline != partial.end(); ++baseline) {
    checkpoint();
    if (!complete(*baseline, candidate, haveLinks)) continue;
    if (kept != baseline) *kept = std::move(*baseline);
    ++kept;
  }
  partial.erase(kept, partial.end());
}

bool hasOnlyCandidate(const Alternatives& name) {
  if (name.candidates->size() != 1) return false;
  const auto& only = name.candidates->front();
  return only && only->name == *name.name;
}

}  // namespace

std::vector<VersionBaseline> combineInOrder(const std::vector<Alternatives>& alternatives,
                                            Links links) {
  if (alternatives.empty()) return {};
  const bool haveLinks = areLinksHeld(alternatives, links);
  std::vector<VersionBaseline> partial = startWith(alternatives.front());
  for (auto next = alternatives.begin() + 1; next != alternatives.end() && !partial.empty();
       ++next) {
    if (hasOnlyCandidate(*next)) {
      keepComplete(partial, next->candidates->front(), haveLinks);
      continue;
    }
    refuseTooMany(partial, *next, alternatives.size());
    const CandidateSet candidates(*next->candidates);
    std::vector<VersionBaseline> extended;
    extended.reserve(partial.size());
    for (VersionBaseline& baseline : partial) {
      checkpoint();
      LinkingBudget::check(extended.size());
      const auto held = baseline.metamodels.find(*next->name);
      if (held == baseline.metamodels.end()) {
        extend(std::move(baseline), *next, extended);
      } else if (candidates.contains(held->second)) {
        extended.push_back(std::move(baseline));
      }
    }
    partial = std::move(extended);
  }
  return partial;
}

std::vector<VersionBaseline> VersionBaseline::combine(
    const std::unordered_map<std::u16string, std::vector<std::shared_ptr<LinkedMetamodel>>>&
        alternatives) {
  std::vector<Alternatives> inMapOrder;
  inMapOrder.reserve(alternatives.size());
  for (const auto& [name, candidates] : alternatives) inMapOrder.push_back({&name, &candidates});
  return combineInOrder(inMapOrder, Links::Any);
}

}  // namespace tarn::evolution::pathfinder
