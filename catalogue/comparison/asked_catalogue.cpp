#include "catalogue/comparison/asked_catalogue.hpp"

#include "catalogue/explanation/selection_lookup.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/text/messages.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SearchLimits;
using pathfinder::SearchStopped;

LinkableRepository& AskedCatalogue::freshRepository() {
  constexpr std::size_t questionsOfOne = 256;  // before what it has linked is dropped
  if (asked_++ % questionsOfOne == 0) repository_.emplace(content_);
  repository_->invalidatePathfindingCache();
  return *repository_;
}

/// Versions that cannot be linked are looked for once the search has stumbled over one.
std::optional<std::vector<pathfinder::BaselineHop>> AskedCatalogue::findPath(
    const Question& question, const SearchLimits& limits) {
  LinkableRepository& repository = freshRepository();
  try {
    return repository.findPath(question.from, question.to, limits);
  } catch (const ConflictingDependencies&) {
    repository.hideUnlinkable();
  }
  try {
    return repository.findPath(question.from, question.to, limits);
  } catch (const ConflictingDependencies&) {  // what is selected cannot be linked itself
    return std::nullopt;
  }
}

AnswerWithPath AskedCatalogue::ask(const Question& question, const SearchLimits& limits) {
  const UnknownEntries unknown = findUnknown(content_, question);
  if (!unknown.entries.empty()) {
    const auto& [name, version] = unknown.entries.front().entry;
    return {{AskedAnswer::Kind::Unknown, 0,
             unknown.entries.front().isNameKnown ? unknownVersion(name, version)
                                                 : unknownMetamodel(name)}};
  }
  try {
    auto path = findPath(question, limits);
    if (!path) return {};
    AnswerWithPath result{{AskedAnswer::Kind::Found}, *std::move(path)};
    for (const auto& step : result.path) result.answer.weight += content_.getWeight(step.hops);
    return result;
  } catch (const SearchStopped& stopped) {
    if (stopped.reason() == SearchStopped::Reason::StopRequested) throw;
    return {{AskedAnswer::Kind::Open}};
  }
}

}  // namespace tarn::evolution::catalogue
