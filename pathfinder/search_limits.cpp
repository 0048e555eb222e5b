#include "pathfinder/search_limits.hpp"

#include <string>

namespace tarn::evolution::pathfinder {

namespace {

std::string textOf(SearchStopped::Reason reason) {
  switch (reason) {
    case SearchStopped::Reason::StopRequested:
      return "The search for a path was stopped";
    case SearchStopped::Reason::DeadlinePassed:
      return "The search for a path has not ended in time";
    case SearchStopped::Reason::MemoryUsedUp:
      return "The search for a path would take more memory than it may";
  }
  return "The search for a path has ended";
}

std::string textOf(SearchStopped::Reason reason, const SearchProgress& progress) {
  std::string text =
      textOf(reason) + ". No path weighs less than " + std::to_string(progress.leastProven);
  if (progress.leastFound)
    text += "; a plan of " + std::to_string(*progress.leastFound) + " is known";
  return text + ".";
}

}  // namespace

SearchStopped::SearchStopped(Reason reason, const SearchProgress& progress)
    : std::runtime_error(textOf(reason, progress)), reason_(reason), progress_(progress) {}

SearchStopped::~SearchStopped() = default;

}  // namespace tarn::evolution::pathfinder
