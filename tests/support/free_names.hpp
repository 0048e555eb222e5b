#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// Finds out by plain enumeration which names block one another when all others are free to have
/// any version at any time. Every linked metamodel is asked of the repository.
class FreeNames {
 public:
  using Names = std::vector<std::u16string>;
  using Versions = std::map<std::u16string, VersionId>;

  /// `sources` must not be empty.
  FreeNames(VersionRepository& repository, const std::vector<VersionBaseline>& sources,
            Versions goals, VersionRepository::Direction direction)
      : repository_(repository),
        sources_(sources),
        goals_(std::move(goals)),
        direction_(direction) {}

  /// Whether the names can be brought to their goals by way of versions that can be held.
  bool canArrive(const Names& names, const std::function<bool(const Versions&)>& canBeHeld);

  /// Whether a baseline holds all of these, and whatever is required.
  bool canBeHeld(const Versions& versions);

  /// The first of the smallest sets of names of the source that cannot be brought to their goals;
  /// none when all can be.
  std::optional<Names> firstBlocked();

 private:
  bool hasArrived(const Versions& held) const;
  bool canBeCombined(const Versions& versions);
  bool canBeCompleted(const VersionBaseline& baseline);
  template <class Meet>
  void moveOn(const Versions& held, Versions::const_iterator name, const Versions& moved,
              const Meet& meet);

  VersionRepository& repository_;
  const std::vector<VersionBaseline>& sources_;
  const Versions goals_;
  const VersionRepository::Direction direction_;
  std::map<std::string, bool> canBeHeld_;  // by what is held, in brief
};

}  // namespace test
