#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "pathfinder/learning/selection_question.hpp"
#include "pathfinder/repository_access.hpp"
#include "pathfinder/search/path_cache.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// How many combinations of hops the exhaustive search may try before the goal-directed search
/// takes over: about as many as that one takes to begin, half a millisecond. Questions that take no
/// more are settled as cheaply as they can be; beyond, the number of combinations grows
/// exponentially with the number of metamodels.
inline constexpr std::uint64_t combinationBudget = 250;

/// A list of baselines of a question, which may be used up if nobody else needs it.
class QuestionBaselines {
 public:
  QuestionBaselines(const std::vector<VersionBaseline>& list) : list_(list) {}
  QuestionBaselines(std::vector<VersionBaseline>&& list) : list_(list), spare_(&list) {}

  const std::vector<VersionBaseline>& list() const { return list_; }

  /// One element, for good.
  VersionBaseline take(const VersionBaseline& element) const {
    if (spare_ == nullptr) return element;
    return std::move(*std::find_if(spare_->begin(), spare_->end(),
                                   [&](const VersionBaseline& own) { return &own == &element; }));
  }

 private:
  const std::vector<VersionBaseline>& list_;
  std::vector<VersionBaseline>* spare_ = nullptr;
};

/// `VersionRepository::findPath` for lists of baselines: asks the cache, searches, and stores what
/// the search found.
std::optional<std::vector<BaselineHop>> answerPathQuestion(
    SearchHost& host, PathCache& cache, const QuestionBaselines& sources,
    const QuestionBaselines& targets, Direction direction,
    std::span<const KnownMetamodel> known = {});

/// `VersionRepository::findPath` between two selections, which differ.
std::optional<std::vector<BaselineHop>> answerSelectionQuestion(RepositoryAccess& access,
                                                                PathCache& cache,
                                                                const SelectionQuestion& question);

/// The direction in which that looks if none is given; no value where a selection stands for no
/// baseline.
std::optional<Direction> directionOfSelectionQuestion(RepositoryAccess& access,
                                                      const SelectionQuestion& question);

}  // namespace tarn::evolution::pathfinder
