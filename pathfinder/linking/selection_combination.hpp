#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/linking/version_lookup.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// A selection of one version for each name.
using VersionsByName = std::unordered_map<std::u16string, VersionId>;

/// What the application answered for a version while a question was put together, and what it was
/// linked to. Refers to what its caller keeps.
struct KnownMetamodel {
  const std::u16string* name;
  const VersionId* version;  ///< what was asked for
  Metamodel metamodel;
  const LinkedMetamodels* linked;  ///< the repository's own list
};

/// `VersionRepository::combine` for the selections of versions of one question. A version that two
/// successive ones hold is asked for once.
///
/// Refers to the selections, which must outlive it.
class SelectionCombination {
 public:
  /// For selections that have no more entries than that in all.
  SelectionCombination(VersionLookup& lookup, std::size_t entries) : lookup_(lookup) {
    answers_.reserve(entries);
  }

  std::vector<VersionBaseline> combine(
      const std::unordered_map<std::u16string, VersionId>& selection);

  /// What the application answered so far. Refers to this object.
  std::span<const KnownMetamodel> known() const { return answers_; }

 private:
  using Answers = std::vector<const KnownMetamodel*>;

  const KnownMetamodel* find(const std::u16string& name, const VersionId& version,
                             std::size_t place) const;
  const KnownMetamodel& ask(const std::u16string& name, const VersionId& version);
  void sortByName(const Answers& answers);

  VersionLookup& lookup_;
  std::vector<KnownMetamodel> answers_;  // never reallocated: what is below points into it
  Answers last_;                         // the last selection's, as it stands in its map
  std::vector<std::size_t> nameOrder_;   // the places of those, by ascending name
};

/// Throws InvalidFamilyVersion.
[[noreturn]] void reportUnknownVersion(const std::u16string& name, const VersionId& version);

/// One entry of a selection of descriptors. Refers to the selection.
struct SelectedMetamodel {
  const std::u16string* name;
  const Metamodel* metamodel;
};

/// `VersionRepository::combine` for a selection of descriptors, linked in the order given; or those
/// of these baselines that meet all requirements.
std::vector<VersionBaseline> combineMetamodels(VersionLookup& lookup,
                                               const std::vector<SelectedMetamodel>& selection,
                                               Requirements asked = Requirements::OfWhatIsHeld);

}  // namespace tarn::evolution::pathfinder
