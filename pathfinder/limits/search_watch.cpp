#include "pathfinder/limits/search_watch.hpp"

#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

/// Looking at the clock takes as long as so many checks, at most some of which take longer than a
/// microsecond.
constexpr std::uint32_t checksBetweenLooks = 64;

}  // namespace

SearchWatch*& SearchWatch::current() {
  thread_local SearchWatch* watch = nullptr;
  return watch;
}

bool SearchWatch::isOver(std::size_t inside) noexcept {
  using Reason = SearchStopped::Reason;
  if (reason_) return true;
  const std::size_t memory = memory_ + inside;
  if (memory > limits_.memory) reason_ = Reason::MemoryUsedUp;
  if (untilNextLook_-- == 0) {
    untilNextLook_ = checksBetweenLooks;
    if (limits_.deadline && std::chrono::steady_clock::now() >= *limits_.deadline) {
      reason_ = Reason::DeadlinePassed;
    }
  }
  if (limits_.stop.stop_requested()) reason_ = Reason::StopRequested;
  if (!reason_ && outer_ != nullptr) return outer_->isOver(memory);
  return reason_.has_value();
}

void SearchWatch::stop() const {
  if (!reason_ && outer_ != nullptr) outer_->stop();
  throw SearchStopped(reason_.value_or(SearchStopped::Reason::StopRequested), progress_);
}

void SearchWatch::enter(SearchProgress::Stage stage) {
  check();
  if (!isAside_ && std::exchange(progress_.stage, stage) != stage) tell();
}

void SearchWatch::noteProven(std::uint64_t weight) {
  if (isAside_ || weight <= progress_.leastProven) return;
  progress_.leastProven = weight;
  tell();
}

void SearchWatch::noteFound(std::uint64_t weight) {
  if (isAside_ || (progress_.leastFound && *progress_.leastFound <= weight)) return;
  progress_.leastFound = weight;
  tell();
}

void SearchWatch::tell() {
  if (limits_.progress) limits_.progress(progress_);
}

}  // namespace tarn::evolution::pathfinder
