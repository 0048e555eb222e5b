#pragma once

#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/named_version.hpp"
#include "catalogue/explanation/question_side.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A name or version of a question that the repository does not know.
struct UnknownEntry {
  QuestionSide side;
  NamedVersion entry;
  bool isNameKnown;  ///< then it is the version that is not

  /// The known names most like an unknown one, the most similar first; often none.
  std::vector<std::u16string> nearestNames;

  /// The nearest known versions of a known name: for a semantic version up to two on either side of
  /// it, ascending; for a text version the most similar ones first.
  std::vector<pathfinder::VersionId> nearestVersions;
};

struct UnknownEntries {
  std::vector<UnknownEntry> entries;  ///< source first, then by ascending name
};

/// What of a question the repository does not know. Costs one look-up for each entry that is known.
TARN_EVOLUTION_CATALOGUE_EXPORT UnknownEntries findUnknown(BrowsableRepository& repository,
                                                           const Question& question);

}  // namespace tarn::evolution::catalogue
