#pragma once

#include <string>
#include <vector>

#include "catalogue/reading/place.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// How grave a finding is. Exactly what keeps a catalogue from being loaded is an error.
enum class Severity {
  Note,     ///< worth knowing; often as it should be
  Warning,  ///< loads, but something in it can never be used, or is not what it seems
  Error,    ///< loading refuses the catalogue
};

/// What a check can find. Identifiers, which are the words of the names with hyphens between them
/// ("not-json"), and severities never change their meaning from one release to the next.
enum class FindingCode {
  // Errors in reading.
  NotJson,         ///< the text is not JSON; nothing else is said of such a file
  DamagedStore,    ///< what SQLite itself finds wrong with a store
  WrongType,       ///< a value of another type than the one that belongs there
  MissingField,    ///< a field that must be there is not
  UnknownField,    ///< a field that has no meaning
  DuplicateField,  ///< a field that stands twice in one object
  BadName,         ///< a name that is empty or holds U+0000
  BadVersion,      ///< a version that is empty, holds U+0000 or begins as a union of ranges does
  BadRange,        ///< a range that cannot be read: a bound has no precedence, or it is reversed
  BadEquivalent,   ///< an equivalent that is no semantic version, or of a semantic version
  OrphanRow,       ///< a table row that belongs to a row that is not there

  // Errors in the whole.
  DuplicateVersion,     ///< one version of a metamodel stands twice
  DuplicateEquivalent,  ///< two text versions of a metamodel have one equivalent
  UnknownDependency,    ///< a dependency on a metamodel that is not there
  UnknownHopMetamodel,  ///< a hop of a metamodel that is not there
  UnknownHopVersion,    ///< a hop from or to a version that is not there
  DependencyCycle,      ///< a note, no error: versions that depend on themselves through one
                        ///< another; one finding for each largest such set, with an example

  // Warnings.
  EmptyRange,               ///< a range that no version can lie in
  UnsatisfiedDependency,    ///< no version in the catalogue lies in the range
  RepeatedDependency,       ///< a second dependency on one name: linking chooses by the first only
  ContradictoryDependency,  ///< the same, and the two ranges share no version
  UnlinkableVersion,        ///< its requirements cannot all be met at once, so it is in no baseline
  UnmetVersion,    ///< it can be linked, but what it and others need of one another without being
                   ///< linked cannot all be met, so no step leads to a baseline with it
  BlockedVersion,  ///< a range of its dependencies admits a version that cannot be linked; linking
                   ///< it links all candidates, and fails
  AmbiguousEquivalent,  ///< a text version's equivalent is also a version of its own: ranges admit
                        ///< both or neither
  DuplicateHop,         ///< a hop that stands twice: every step with it is tried twice
  SelfHop,              ///< a hop that leads to where it starts
  UnofferedHop,         ///< a hop from a semantic version that is there only as a text version's
                        ///< equivalent: hops are asked for by the version itself, so it is never
                        ///< offered
  UnknownQuestionMetamodel,  ///< the catalogue's question names a metamodel that is not there
  UnknownQuestionVersion,    ///< or a version that is not there
  EmptyQuestion,             ///< or nothing at all
  InconsistentQuestion,      ///< or versions that cannot stand together

  // Notes, once for each metamodel but the last.
  MissingEquivalent,  ///< versions without a precedence beside versions that have one: no range
                      ///< between two versions admits them, and they count as older than those
  NoHops,             ///< a metamodel of several versions without any hop
  StrandedVersions,   ///< versions that no hop enters or leaves, where other versions have hops
  UnreachedVersions,  ///< versions that hops leave, but none enters except from a newer one, and
                      ///< that are not the oldest
  SeveralHeads,       ///< several versions that hops enter, but none leaves except to an older one
  UndecidedLinks,     ///< deciding whether versions can be linked took more than the work allowed
};

/// One thing found in a catalogue.
struct Finding {
  FindingCode code{};
  Place place;
  std::string message;         ///< one sentence without its full stop, naming what it is about
  std::vector<Place> related;  ///< other places that take part, in the order of the message

  /// The metamodels whose versions, hops or selection these places are, ascending. Filled in by
  /// `check`.
  std::vector<std::u16string> names = {};
};

/// The stable identifier, such as "dependency-cycle".
TARN_EVOLUTION_CATALOGUE_EXPORT std::string identifierOf(FindingCode code);

/// Every code, in the order of the enumeration.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<FindingCode> allFindingCodes();

TARN_EVOLUTION_CATALOGUE_EXPORT Severity severityOf(FindingCode code);

/// "error", "warning" or "note".
TARN_EVOLUTION_CATALOGUE_EXPORT std::string nameOf(Severity severity);

/// What all findings of a code have in common, as a heading.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string titleOf(FindingCode code);

}  // namespace tarn::evolution::catalogue
