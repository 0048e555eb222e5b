#include "catalogue/comparison/asked_catalogue.hpp"

#include "catalogue/explanation/selection_lookup.hpp"
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

AnswerWithPath AskedCatalogue::ask(const Question& question, const SearchLimits& limits) {
  const UnknownEntries unknown = findUnknown(content_, question);
  if (!unknown.entries.empty()) {
    const auto& [name, version] = unknown.entries.front().entry;
    return {{AskedAnswer::Kind::Unknown, 0,
             unknown.entries.front().isNameKnown ? unknownVersion(name, version)
                                                 : unknownMetamodel(name)}};
  }
  try {
    auto path = freshRepository().findPathBesideUnlinkable(question, limits);
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
