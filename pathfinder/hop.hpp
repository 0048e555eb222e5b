#pragma once

#include <iosfwd>
#include <string>
#include <unordered_map>

#include "pathfinder/version_baseline.hpp"
#include "pathfinder/version_id.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// One metamodel's move from one version to another, as the application offers it.
struct TARN_EVOLUTION_PATHFINDER_EXPORT Hop {
  Hop(const std::u16string& name, const VersionId& from, const VersionId& to, bool expensive);

  /// Name and both versions; `expensive` is not compared.
  bool operator==(const Hop& other) const;

  std::u16string name;
  VersionId from;
  VersionId to;
  bool expensive;  ///< to be avoided: weighs more than any number of ordinary hops met in practice
};

/// Writes "Hop {name@from->to}".
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out, const Hop& hop);

/// A lockstep hop: hops that are applied together, by metamodel name.
using LockstepHop = std::unordered_map<std::u16string, Hop>;

/// Writes "Lockstep {hop, hop, ...}" with the hops in ascending name order (UTF-16 code units), and
/// returns `out`.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& dumpLockstepHop(const LockstepHop& hops,
                                                               std::ostream& out);

/// The same text as a string, whatever the global locale is.
TARN_EVOLUTION_PATHFINDER_EXPORT std::string dumpLockstepHop(const LockstepHop& hops);

/// One step of a path: the baseline before it, the baseline after it, and the lockstep hop between.
///
/// A plain value, independent of the repository that made it. Copies are deep, but for the linked
/// metamodels, which the baselines share.
struct TARN_EVOLUTION_PATHFINDER_EXPORT BaselineHop {
  BaselineHop(const VersionBaseline& from, const VersionBaseline& to, const LockstepHop& hops);
  BaselineHop(const VersionBaseline& from, VersionBaseline&& to, LockstepHop&& hops);

  VersionBaseline from;
  VersionBaseline to;
  LockstepHop hops;
};

}  // namespace tarn::evolution::pathfinder
