#include "attended_explanation.hpp"

#include <iostream>

#include "catalogue/explanation/explanation_text.hpp"
#include "interruption.hpp"
#include "search_monitor.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::SearchLimits;
using tarn::evolution::pathfinder::SearchStopped;

Explanation explainAttended(BrowsableRepository& repository, const Question& question,
                            std::size_t budget, const SearchLimits& limits) {
  Explanation explanation =
      searchAttended(limits, SearchMonitor::Task::Explanation, SearchMonitor::Line::OnTerminal,
                     [&](const SearchLimits& attended) {
                       return explain(repository, question, budget, attended);
                     });
  if (explanation.stopped == SearchStopped::Reason::StopRequested) {
    writeExplanationText(explanation, weightsOf(repository), std::cerr);
    throwIfInterrupted("interrupted");
  }
  return explanation;
}

ExitStatus statusOf(const Explanation& explanation) {
  if (std::holds_alternative<PathExists>(explanation.reason)) return ExitStatus::Found;
  const bool isBadInput = std::holds_alternative<UnknownEntries>(explanation.reason) ||
                          std::holds_alternative<PathBesideUnlinkable>(explanation.reason);
  return isBadInput ? ExitStatus::BadInput : ExitStatus::NoPath;
}

}  // namespace evopath
