#include "catalogue/explanation/inquiry.hpp"

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SearchStopped;
using pathfinder::VersionBaseline;

namespace {

constexpr std::size_t mostBaselines = 5'000;

}  // namespace

std::optional<Path> Inquiry::findPath(const Question& question) {
  ++questions_;
  return repository_.findPathBesideUnlinkable(question, limits_);
}

std::optional<Path> Inquiry::findPath(const std::vector<VersionBaseline>& from,
                                      const std::vector<VersionBaseline>& to, Direction direction) {
  ++questions_;
  // A path of another direction must not answer, nor a heavier one to another target.
  repository_.invalidatePathfindingCache();
  try {
    return repository_.findPath(from, to, direction, limits_);
  } catch (const ConflictingDependencies&) {
    repository_.hideUnlinkable();
    return repository_.findPath(from, to, direction, limits_);
  }
}

template <class Find>
Answer Inquiry::answerBy(const Find& find) {
  if (isSpent()) return {.isOpen = true};
  try {
    return {.path = find()};
  } catch (const SearchStopped& stopped) {
    noteStopped(stopped.reason());
    return {.isOpen = true};
  }
}

Answer Inquiry::ask(const std::vector<VersionBaseline>& from,
                    const std::vector<VersionBaseline>& to, Direction direction) {
  return answerBy([&] { return findPath(from, to, direction); });
}

Answer Inquiry::ask(const Question& question) {
  return answerBy([&] { return findPath(question); });
}

std::optional<Direction> Inquiry::findDirection(const Question& question) {
  try {
    return repository_.findDirection(question.from, question.to, limits_);
  } catch (const SearchStopped& stopped) {
    noteStopped(stopped.reason());
  } catch (const ConflictingDependencies&) {  // NOLINT(bugprone-empty-catch)
  }
  return std::nullopt;
}

std::unique_ptr<pathfinder::BlockedQuestion> Inquiry::pose(const Selection& from,
                                                           const Selection& to,
                                                           Direction direction) {
  try {
    return pathfinder::BlockedQuestion::pose(repository_, from, to, direction, limits_);
  } catch (const SearchStopped& stopped) {
    noteStopped(stopped.reason());
    return nullptr;
  }
}

bool Inquiry::isStopped() {
  std::optional<SearchStopped::Reason> reason;
  if (limits_.deadline && std::chrono::steady_clock::now() >= *limits_.deadline) {
    reason = SearchStopped::Reason::DeadlinePassed;
  }
  if (limits_.stop.stop_requested()) reason = SearchStopped::Reason::StopRequested;
  if (!stopped_) stopped_ = reason;
  return reason.has_value();
}

std::vector<VersionBaseline> Inquiry::combine(const SelectedMetamodels& selection) {
  std::vector<Candidates> candidates;
  for (const auto& [name, metamodel] : selection) {
    const LinkedMetamodels* linked = repository_.tryLink(metamodel);
    if (linked == nullptr) return {};
    candidates.push_back({name, *linked});
  }
  CombinedCandidates combined = combineCandidates(candidates, mostBaselines);
  hasCut_ |= combined.isCut;
  return std::move(combined.baselines);
}

}  // namespace tarn::evolution::catalogue
