// Requirements are resolved once, when a metamodel is linked, into the set of descriptors that meet
// them. A baseline is then compared with these sets name by name; nothing of it depends on which
// linked metamodel of a version is held.

#include "pathfinder/linking/requirements.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "pathfinder/linking/version_lookup.hpp"

namespace tarn::evolution::pathfinder {

namespace {

bool isMet(const ResolvedRequirement& requirement, Requirements asked,
           const VersionBaseline& baseline) {
  const auto held = baseline.metamodels.find(requirement.name);
  if (held != baseline.metamodels.end() && held->second) {
    return requirement.admitted.contains(*held->second);
  }
  return requirement.isOptional || asked == Requirements::OfWhatIsHeld;
}

}  // namespace

ResolvedRequirements resolveRequirements(LinkingHost& host, const Metamodel& metamodel) {
  std::vector<PeerRequirement> required;
  host.findRequirements(metamodel, required);
  ResolvedRequirements result;
  result.reserve(required.size());
  std::vector<Metamodel> candidates;
  for (PeerRequirement& requirement : required) {
    candidates.clear();
    host.findMetamodels(requirement.name, requirement.range, candidates);
    result.push_back(
        {std::move(requirement.name),
         {std::make_move_iterator(candidates.begin()), std::make_move_iterator(candidates.end())},
         requirement.isOptional});
  }
  return result;
}

bool meets(Requirements asked, VersionLookup& lookup, const VersionBaseline& baseline) {
  if (!lookup.hasRequirements()) return true;
  return std::all_of(
      baseline.metamodels.begin(), baseline.metamodels.end(), [&](const auto& entry) {
        if (!entry.second) return true;
        const ResolvedRequirements& required = lookup.requirementsOf(*entry.second);
        return std::all_of(required.begin(), required.end(), [&](const auto& requirement) {
          return isMet(requirement, asked, baseline);
        });
      });
}

void keepThoseThatMeet(Requirements asked, VersionLookup& lookup,
                       std::vector<VersionBaseline>& baselines) {
  if (!lookup.hasRequirements()) return;
  std::erase_if(baselines,
                [&](const VersionBaseline& baseline) { return !meets(asked, lookup, baseline); });
}

}  // namespace tarn::evolution::pathfinder
