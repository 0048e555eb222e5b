#pragma once

#include <map>
#include <string>

#include "pathfinder/hop.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// What is told of hops, for people to read: why one is expensive, what to see to, a link. Each
/// name with a version to leave and one to reach has one text at most, never an empty one.
class TARN_EVOLUTION_CATALOGUE_EXPORT HopNotes {
 public:
  /// Of several for the same hop the first one counts; an empty one does not.
  void add(const pathfinder::Hop& hop, const std::u16string& note);

  /// Empty when there is none. Valid until the notes are changed.
  const std::u16string& of(const pathfinder::Hop& hop) const;

  bool empty() const noexcept { return notes_.empty(); }

  bool operator==(const HopNotes&) const = default;

 private:
  std::map<std::u16string, std::u16string> notes_;  // by what the hop is told by
};

}  // namespace tarn::evolution::catalogue
