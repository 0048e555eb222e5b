#pragma once

#include <set>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/clash.hpp"
#include "support/explained_case.hpp"

namespace test {

/// Holds a clash over what versions need of one another against the catalogue.
class ClashCheck {
 public:
  ClashCheck(tarn::evolution::catalogue::BrowsableRepository& repository,
             const tarn::evolution::catalogue::Clash& clash);

  /// Whether it tells of what is not linked.
  bool isOfRequirements() const;

  /// Each is one that the catalogue has; one comes to each from the parties; and together they
  /// leave no choice.
  void run() const;

  /// Whether what is told leaves no choice, but for what is missing. Links need not be told whole:
  /// of the versions that a chain might lead through it tells those that can be linked.
  bool isWhole() { return leavesChoice({}, names_.begin()) == clash_.isMissing; }

 private:
  using Name = std::set<std::u16string>::const_iterator;

  std::vector<PeerRequirement> requirementsOf(
      const tarn::evolution::catalogue::NamedVersion& named) const;

  /// The versions that a party is said to have, or else all.
  std::vector<VersionId> versionsOf(const std::u16string& name) const;

  bool leavesChoice(const Versions& chosen, Name next) const;

  bool areMetBy(const Versions& chosen) const;

  /// Whether the dependencies along a chain are met.
  bool areChainedBy(const Versions& chosen,
                    const std::vector<tarn::evolution::catalogue::NamedVersion>& chain) const;

  bool includes(const VersionRange& range, const std::u16string& name,
                const Versions& chosen) const;

  tarn::evolution::catalogue::BrowsableRepository& repository_;
  const tarn::evolution::catalogue::Clash& clash_;
  std::set<std::u16string> names_;
};

}  // namespace test
