#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "pathfinder/linking/linking_host.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

class VersionLookup;

/// A requirement with the metamodels that meet it.
struct ResolvedRequirement {
  std::u16string name;
  std::unordered_set<Metamodel> admitted;
  bool isOptional;
};

using ResolvedRequirements = std::vector<ResolvedRequirement>;

/// Asks the application for what a metamodel requires.
ResolvedRequirements resolveRequirements(LinkingHost& host, const Metamodel& metamodel);

/// What is asked of a baseline.
enum class Requirements {
  OfWhatIsHeld,  ///< that nothing it holds is excluded; what is missing may be brought in
  All,
};

/// Whether a baseline meets the requirements of all that it holds. Throws what linking throws.
bool meets(Requirements asked, VersionLookup& lookup, const VersionBaseline& baseline);

/// Leaves out baselines that do not.
void keepThoseThatMeet(Requirements asked, VersionLookup& lookup,
                       std::vector<VersionBaseline>& baselines);

}  // namespace tarn::evolution::pathfinder
