#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/comparison/asked_answer.hpp"
#include "catalogue/explanation/linkable_repository.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue {

/// An answer with its path.
struct AnswerWithPath {
  AskedAnswer answer;
  std::vector<pathfinder::BaselineHop> path = {};
};

/// A catalogue that is asked one question after the other. What was linked for one serves the next;
/// paths found do not, so that an answer does not depend on what was asked before.
class AskedCatalogue {
 public:
  explicit AskedCatalogue(Catalogue catalogue) : content_(std::move(catalogue)) {}

  CatalogueContent content() const { return content_.catalogue().content(); }

  /// Versions that cannot be linked take no part. Throws SearchStopped where the stop is requested.
  AnswerWithPath ask(const Question& question, const pathfinder::SearchLimits& limits);

 private:
  LinkableRepository& freshRepository();

  CatalogueRepository content_;
  std::optional<LinkableRepository> repository_;
  std::size_t asked_ = 0;
};

}  // namespace tarn::evolution::catalogue
