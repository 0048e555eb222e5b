#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/conditions/conditional_path.hpp"

namespace evopath {

/// A question with everything that a path is to keep to.
struct ConditionalQuestion {
  tarn::evolution::catalogue::Selection from;
  std::vector<tarn::evolution::catalogue::PathGoal> goals;  ///< by ascending name
  tarn::evolution::catalogue::PathConditions conditions;
};

/// The options that say what lies between the ends of a path, and targets that are several
/// versions.
struct ConditionOptions {
  std::vector<std::string> avoided;  ///< NAME=RANGE each
  std::vector<std::string> pinned;   ///< NAME or NAME=VERSION each
  std::vector<std::string> via;      ///< NAME=VERSION each
  std::string direction;             ///< empty: that from source to target
  std::size_t alternatives = 1;

  void addTo(CLI::App& command);

  /// The question under the options; none if they ask for nothing beyond `question`. Throws
  /// std::invalid_argument for what the repository does not know.
  std::optional<ConditionalQuestion> resolve(
      tarn::evolution::catalogue::BrowsableRepository& repository,
      const tarn::evolution::catalogue::Question& question) const;
};

}  // namespace evopath
