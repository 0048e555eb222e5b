#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "catalogue/check/draft_index.hpp"

namespace tarn::evolution::catalogue {

/// Sets of versions that are known to stand together, in which most further versions find all that
/// they need, so that nothing has to be searched for them.
///
/// A set holds at most one version of each name, and with each version one for each of its
/// dependencies.
class LinkWitnesses {
 public:
  explicit LinkWitnesses(const DraftIndex& index);

  /// Whether some set shows that the version can stand with all that it needs. False says nothing.
  bool cover(Slot slot);

  /// Remembers such a set.
  void add(const std::vector<Slot>& versions);

 private:
  using Set = std::unordered_map<NameNumber, Slot>;

  void findLayered();
  std::uint32_t setOf(Slot slot);
  bool covers(const Set& set, Slot slot) const;
  void assign(Slot slot, std::uint32_t set);

  const DraftIndex& index_;
  std::vector<bool> isLayered_;  // of names: none of its versions needs the name itself
  std::vector<Set> sets_;
  std::vector<std::uint32_t> users_;  // of each set: the versions that would ask it
  std::vector<std::uint32_t> setOf_;  // of each slot: the one to ask for what needs it
  std::size_t held_ = 0;              // versions in all sets
};

}  // namespace tarn::evolution::catalogue
