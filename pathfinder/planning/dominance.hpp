#pragma once

#include <cstddef>
#include <vector>

#include "pathfinder/planning/bit_row.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/incoming_hops.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/selection_table.hpp"

namespace tarn::evolution::pathfinder {

/// Tells in which steps of a best plan a name cannot stay at its version, because the plan is
/// dominated by another one: the hop that brought the name there could have waited for that very
/// step.
class Dominance {
 public:
  enum class Stay {
    Always,
    WithoutOrdinaryHop,  ///< only in a step that has no ordinary hop
    Never,
  };

  /// Plans may have one more version to begin from, which a first step brings in that is not to
  /// wait; `none` for none.
  Dominance(const SearchSpace& space, const Compatibility& compatibility,
            const IncomingHops& incoming, VersionIndex start = SearchSpace::none);

  /// Whether best plans that need not end with the name at a certain version end with it at
  /// `version`: a name that has nothing to do with any other stays where it begins, unless it
  /// begins where it cannot stay.
  bool mayEndAt(VersionIndex version) const {
    const NameIndex name = space_.versions[version].name;
    return isStart_[version] || !entersOnlyByHops_ || cannotStay_[name] ||
           !compatibility_.neighbours(name).empty();
  }

  /// In which steps that lead to `after` the name of that version can stay at it.
  Stay stayAt(VersionIndex version, SelectionView after) const;

 private:
  void findNamesThatCannotWait();
  void findNamesLinkedAtWill();
  void holdBack(const SearchSpace::Variant& variant);
  bool findEntersOnlyByHops() const;
  bool mayEnterBySwitching(VersionIndex version) const;
  bool agreeInVersions(const SearchSpace::Variant& left, const SearchSpace::Variant& right) const;
  void findWaysInto(NameIndex index);
  bool canWait(const IncomingHop& hop, SelectionView after) const;
  BitRow waysInto(VersionIndex version);
  ConstBitRow waysInto(VersionIndex version) const;

  const SearchSpace& space_;
  const Compatibility& compatibility_;
  const IncomingHops& incoming_;
  std::vector<bool> isStart_;  // by version
  bool entersOnlyByHops_ = true;
  std::vector<bool> cannotStay_;  // by name: whether no step leads to what some source holds
  std::vector<bool> cannotWait_;  // by name: whether its hops may matter for what links bring in

  // For each version, as bits, the versions of its name that it may have been before, and itself.
  std::vector<std::size_t> waysStart_;
  std::vector<BitWord> ways_;
};

}  // namespace tarn::evolution::pathfinder
