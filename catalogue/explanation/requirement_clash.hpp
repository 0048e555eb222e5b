#pragma once

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "catalogue/explanation/clash.hpp"
#include "pathfinder/requirement.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::catalogue {

/// Versions by name, of each of which one has to be held.
using Given = std::map<std::u16string, std::vector<pathfinder::Metamodel>>;

/// Of two versions that are held together, by name, one of which requires another one of the
/// other's name: as a clash. None when what is held excludes nothing of it.
std::optional<Clash> findExcluded(
    pathfinder::VersionRepository& repository,
    const std::map<std::u16string, const pathfinder::Metamodel*>& held);

/// Finds out why versions cannot stand together for what they need, be it linked or not. One thread
/// at a time may use it; the repository must outlive it.
class RequirementClashes {
 public:
  /// What has to be there beside a version.
  enum Presence { OfDependencies, OfAllNeeds };

  RequirementClashes(pathfinder::VersionRepository& repository, Presence presence)
      : repository_(repository), presence_(presence) {}

  /// None when the versions can stand together, all other names having any version, or when it
  /// takes too long to see that they cannot. Each requirement is that of one version. From those
  /// of what is given, requirement by requirement, one comes to every other; together they cannot
  /// be met.
  std::optional<Clash> find(const Given& given);

 private:
  friend class Refutation;

  struct Need {
    std::u16string name;
    pathfinder::VersionRange range;
    bool isOptional;
    bool brings;  ///< it has to be there
    std::vector<pathfinder::Metamodel> candidates;
    std::unordered_set<pathfinder::VersionId> admitted;
  };

  const std::vector<Need>& needsOf(const pathfinder::Metamodel& metamodel);
  Need resolve(pathfinder::PeerRequirement required, bool brings);

  pathfinder::VersionRepository& repository_;
  const Presence presence_;
  std::unordered_map<pathfinder::Metamodel, std::vector<Need>> needs_;
};

}  // namespace tarn::evolution::catalogue
