#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/linkable_repository.hpp"

namespace tarn::evolution::catalogue {

using Path = std::vector<pathfinder::BaselineHop>;
using Direction = pathfinder::VersionRepository::Direction;

/// Descriptors by name, in ascending order.
using SelectedMetamodels = std::map<std::u16string, pathfinder::Metamodel>;

/// Puts questions to the path finder and counts them, over the content of a repository that must
/// outlive it.
///
/// Questions are asked of the whole content at first. As soon as the path finder meets a version
/// that cannot be linked, the hops to all such versions are left out for good.
class Inquiry {
 public:
  /// Each question is asked within the limits, which must outlive it as well.
  Inquiry(BrowsableRepository& content, const pathfinder::SearchLimits& limits)
      : content_(content), repository_(content), limits_(limits) {}

  BrowsableRepository& content() { return content_; }
  LinkableRepository& repository() { return repository_; }

  /// The least-weight path between some baselines of `repository()`, counted as one question.
  std::optional<Path> findPath(const std::vector<pathfinder::VersionBaseline>& from,
                               const std::vector<pathfinder::VersionBaseline>& to,
                               Direction direction);

  /// Allows so many questions from now on.
  void allow(std::size_t questions) { allowed_ = questions_ + questions; }

  /// Whether no more questions are allowed. It is for those who ask to stop then.
  bool isSpent() const { return questions_ >= allowed_; }

  std::size_t questions() const { return questions_; }

  /// The baselines that realise a selection, in the order of `VersionRepository::combine`; none for
  /// no names or a version that cannot be linked. Leaves out those beyond a limit and then says so
  /// from now on (`hasCut`).
  std::vector<pathfinder::VersionBaseline> combine(const SelectedMetamodels& selection);

  /// Whether some answer of `combine` was not whole, so that "there is no path" may be wrong.
  bool hasCut() const { return hasCut_; }

 private:
  BrowsableRepository& content_;
  LinkableRepository repository_;
  const pathfinder::SearchLimits& limits_;
  std::size_t questions_ = 0;
  std::size_t allowed_ = 0;
  bool hasCut_ = false;
};

}  // namespace tarn::evolution::catalogue
