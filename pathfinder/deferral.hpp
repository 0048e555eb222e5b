#pragma once

#include <cstddef>
#include <vector>

#include "pathfinder/coexistence.hpp"
#include "pathfinder/incoming_hops.hpp"
#include "pathfinder/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// Tells in which steps of a best plan a name cannot stay at its version, because the hop that
/// brought it there could have waited for that very step.
///
/// Take a plan in which a name stays at v in some step, and the last hop of that name before it, u
/// to v. Taken in that step instead, it makes the later step heavier and the earlier one lighter,
/// or removes it: of two plans of one total, the one that is heavier in the later step comes first.
/// So the plan is not a best one, unless the change breaks it or makes the step dearer:
///
/// - between the two steps the name is now at u, which then must stand beside all that the other
///   names hold meanwhile: versions that can stand beside v and from which hops lead to what they
///   hold after the step;
/// - an ordinary hop adds 1 to a step that has no other ordinary hop;
/// - when a name may enter through links, a step may be needed for that alone, and what it brings
///   in may depend on v. Then nothing is deferred.
///
/// Without this, names that hardly depend on one another multiply the plans to be looked at: every
/// distribution of their hops among the steps is one.
class Deferral {
 public:
  enum class Stay {
    Always,
    WithoutOrdinaryHop,  ///< only in a step that has no ordinary hop
    Never,
  };

  Deferral(const SearchSpace& space, const Coexistence& coexistence, const IncomingHops& incoming,
           const std::vector<VersionSelection>& sources);

  /// In which steps that lead to `after` the name of that version can stay at it.
  Stay stayAt(VersionIndex version, const VersionSelection& after) const;

 private:
  void findWaysInto(NameIndex index);
  bool canWait(const IncomingHop& hop, const VersionSelection& after) const;

  const SearchSpace& space_;
  const Coexistence& coexistence_;
  const IncomingHops& incoming_;
  bool isEveryNameHeld_;          // from the start
  std::vector<bool> isInSource_;  // by version

  // For each version, as bits, the versions of its name from which hops lead to it, and itself.
  std::vector<std::size_t> waysStart_;
  std::vector<VersionBits> waysInto_;
};

}  // namespace tarn::evolution::pathfinder
