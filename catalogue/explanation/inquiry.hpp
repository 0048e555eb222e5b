#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/linkable_repository.hpp"
#include "catalogue/explanation/selection_lookup.hpp"
#include "pathfinder/blocked_question.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue {

using Path = std::vector<pathfinder::BaselineHop>;
using Direction = pathfinder::VersionRepository::Direction;

/// Descriptors by name, in ascending order.
using SelectedMetamodels = std::map<std::u16string, pathfinder::Metamodel>;

/// What the path finder has said.
struct Answer {
  std::optional<Path> path = std::nullopt;
  /// It was not asked, for no more questions are allowed, or a limit was reached before it was
  /// known whether there is a path.
  bool isOpen = false;

  bool isAbsent() const { return !path && !isOpen; }
};

/// Puts questions to the path finder and counts them, over the content of a repository that must
/// outlive it.
///
/// Questions are asked of the whole content at first. As soon as the path finder meets a version
/// that cannot be linked, the hops to all such versions are left out for good.
class Inquiry {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  Inquiry(BrowsableRepository& content, const pathfinder::SearchLimits& limits)
      : content_(content), repository_(content), limits_(limits) {
    limits_.betterPath = {};  // it would be told answers to parts of the question
  }

  BrowsableRepository& content() { return content_; }
  LinkableRepository& repository() { return repository_; }

  /// The least-weight path that answers a question, counted as one. None where a version that it
  /// selects cannot be linked. Throws SearchStopped when a limit is reached.
  std::optional<Path> findPath(const Question& question);

  /// The least-weight path between some baselines of `repository()`, counted as one question.
  /// Throws SearchStopped when a limit is reached.
  std::optional<Path> findPath(const std::vector<pathfinder::VersionBaseline>& from,
                               const std::vector<pathfinder::VersionBaseline>& to,
                               Direction direction);

  /// The same as an answer, which a limit leaves open. Asks nothing once `isSpent`.
  Answer ask(const std::vector<pathfinder::VersionBaseline>& from,
             const std::vector<pathfinder::VersionBaseline>& to, Direction direction);

  /// The same between selections. No path as well where a version cannot be linked.
  Answer ask(const Question& question);

  /// The direction in which the path finder looks. No value when a selection stands for no baseline
  /// or a limit is reached.
  std::optional<Direction> findDirection(const Question& question);

  /// A question without a path that can be asked why; null for one that cannot, or when a limit is
  /// reached.
  std::unique_ptr<pathfinder::BlockedQuestion> pose(const Selection& from, const Selection& to,
                                                    Direction direction);

  /// What `ask(limits)` returns, counted as one question; no value when no more are allowed or a
  /// limit is reached.
  template <class Ask>
  auto within(const Ask& ask) -> decltype(ask(pathfinder::SearchLimits())) {
    if (isSpent()) return {};
    ++questions_;
    try {
      return ask(limits_);
    } catch (const pathfinder::SearchStopped& stopped) {
      noteStopped(stopped.reason());
      return {};
    }
  }

  void noteStopped(pathfinder::SearchStopped::Reason reason) {
    if (!stopped_) stopped_ = reason;
  }

  /// Allows so many questions from now on, until that moment.
  void allow(std::size_t questions, std::optional<TimePoint> deadline) {
    allowed_ = questions_ + questions;
    limits_.deadline = deadline;
  }

  /// Whether no more questions are allowed: from the start, until `allow` is called, none but the
  /// first.
  bool isSpent() { return isStopped() || questions_ >= allowed_; }

  /// Whether the time is up or a stop was requested. Every answer is open then.
  bool isStopped();

  /// The limit that was reached first, if one was.
  std::optional<pathfinder::SearchStopped::Reason> stopped() const { return stopped_; }

  std::size_t questions() const { return questions_; }

  /// The baselines that realise a selection, in the order of `VersionRepository::combine`; none for
  /// no names or a version that cannot be linked. Leaves out those beyond a limit and then says so
  /// from now on (`hasCut`).
  std::vector<pathfinder::VersionBaseline> combine(const SelectedMetamodels& selection);

  /// Whether some answer of `combine` was not whole, so that "there is no path" may be wrong.
  bool hasCut() const { return hasCut_; }

 private:
  template <class Find>
  Answer answerBy(const Find& find);

  BrowsableRepository& content_;
  LinkableRepository repository_;
  pathfinder::SearchLimits limits_;
  std::optional<pathfinder::SearchStopped::Reason> stopped_;
  std::size_t questions_ = 0;
  std::size_t allowed_ = 0;
  bool hasCut_ = false;
};

}  // namespace tarn::evolution::catalogue
