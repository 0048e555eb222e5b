#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/named_version.hpp"
#include "catalogue/explanation/question_side.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A name or version that the repository does not know, of a question or of what else is asked.
struct UnknownEntry {
  std::optional<QuestionSide> side;  ///< none where there are no sides
  NamedVersion entry;
  bool isNameKnown;  ///< then it is the version that is not

  /// The known names most like an unknown one, the most similar first; often none.
  std::vector<std::u16string> nearestNames;

  /// The nearest known versions of a known name: for a version that has a precedence, and for a
  /// number by itself, up to two on either side of it, ascending; for others the most similar ones
  /// first.
  std::vector<pathfinder::VersionId> nearestVersions;
};

struct UnknownEntries {
  std::vector<UnknownEntry> entries;  ///< source first, then by ascending name
};

/// What of a question, or of a selection by itself, the repository does not know. Costs one look-up
/// for each entry that is known.
TARN_EVOLUTION_CATALOGUE_EXPORT UnknownEntries findUnknown(BrowsableRepository& repository,
                                                           const Question& question);
TARN_EVOLUTION_CATALOGUE_EXPORT UnknownEntries findUnknown(BrowsableRepository& repository,
                                                           const Selection& selection);

/// Which of some names no metamodel has; their entries are of version 0.0.0.
TARN_EVOLUTION_CATALOGUE_EXPORT UnknownEntries
findUnknownNames(BrowsableRepository& repository, const std::vector<std::u16string>& names);

}  // namespace tarn::evolution::catalogue
