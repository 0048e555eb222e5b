#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// From where a chain begins to where it ends.
struct ChainWay {
  pathfinder::VersionId tail;
  pathfinder::VersionId head;
};

/// Where chains begin and end of versions that hops hold together, both ascending and never empty.
struct ChainEnds {
  std::vector<pathfinder::VersionId> tails;
  std::vector<pathfinder::VersionId> heads;

  std::uint64_t wayCount() const { return std::uint64_t{tails.size()} * heads.size(); }

  /// Adds ways as long as there are fewer than `most` in the list, to the newest head and from the
  /// oldest tail first.
  void addWays(std::size_t most, std::vector<ChainWay>& ways) const;
};

/// The chains that hops to newer versions make of the versions of a metamodel. Versions without a
/// precedence are older than all others; hops between two of them lead on, whichever way. Versions
/// without such hops are in no chain. Takes time in proportion to the versions and hops.
class Chains {
 public:
  Chains(const Catalogue& catalogue, const std::u16string& name);

  /// The ends of each set of versions that hops hold together, by its oldest version, ascending.
  std::vector<ChainEnds> ends() const;

  /// The newest version where a chain ends.
  std::optional<pathfinder::VersionId> newest() const;

 private:
  std::optional<std::size_t> numberOf(std::optional<CatalogueIndex::Position> position) const;
  void join(std::size_t from, std::size_t to);
  std::size_t setOf(std::size_t number);
  bool isTail(std::size_t number) const { return isLeft_[number] && !isEntered_[number]; }
  bool isHead(std::size_t number) const { return isEntered_[number] && !isLeft_[number]; }

  // Versions are numbered by precedence, those without one first.
  std::map<CatalogueIndex::Position, std::size_t> numbers_;
  std::vector<pathfinder::VersionId> versions_;
  std::vector<std::size_t> sets_;  // of each version one of its set, the same of all in the end
  std::vector<bool> isEntered_;
  std::vector<bool> isLeft_;
};

}  // namespace tarn::evolution::catalogue
