#include "support/clash_check.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace test {

using namespace tarn::evolution::catalogue;

ClashCheck::ClashCheck(BrowsableRepository& repository, const Clash& clash)
    : repository_(repository), clash_(clash) {
  for (const Requirement& requirement : clash.requirements) {
    for (const NamedVersion& named : requirement.chain) names_.insert(named.name);
    names_.insert(requirement.name);
  }
}

bool ClashCheck::isOfRequirements() const {
  const auto& told = clash_.requirements;
  return std::any_of(told.begin(), told.end(), [&](const Requirement& requirement) {
    if (!requirement.range) return false;
    const NamedVersion& holder = requirement.chain.back();
    const auto isThat = [&](const auto& needed) {
      return needed.name == requirement.name && needed.range == *requirement.range;
    };
    const auto listed = requirementsOf(holder);
    const auto linked = repository_.getMetamodel(holder.name, holder.version)->dependencies;
    return std::any_of(listed.begin(), listed.end(), isThat) &&
           std::none_of(linked.begin(), linked.end(), isThat);
  });
}

void ClashCheck::run() const {
  std::set<std::u16string> known(clash_.parties.begin(), clash_.parties.end());
  for (std::size_t i = 0; i < clash_.requirements.size(); ++i) {
    const Requirement& requirement = clash_.requirements[i];
    const NamedVersion& holder = requirement.chain.back();
    EXPECT_TRUE(known.contains(requirement.chain.front().name)) << i;
    known.insert(requirement.name);
    if (!requirement.range) continue;
    auto needs = requirementsOf(holder);
    const Metamodel metamodel = *repository_.getMetamodel(holder.name, holder.version);
    for (const auto& [name, range] : metamodel.dependencies) needs.push_back({name, range, false});
    EXPECT_TRUE(std::any_of(needs.begin(), needs.end(), [&](const PeerRequirement& need) {
      return need.name == requirement.name && need.range == *requirement.range &&
             need.isOptional == requirement.isOptional;
    })) << i;
  }
}

std::vector<PeerRequirement> ClashCheck::requirementsOf(const NamedVersion& named) const {
  return repository_.getRequirements(*repository_.getMetamodel(named.name, named.version));
}

std::vector<VersionId> ClashCheck::versionsOf(const std::u16string& name) const {
  std::vector<VersionId> all;
  for (const auto& row : repository_.listMetamodels(name)) all.push_back(row.descriptor.version);
  if (!std::count(clash_.parties.begin(), clash_.parties.end(), name)) return all;
  std::vector<VersionId> said;
  std::vector<VersionId> holders;
  for (const Requirement& requirement : clash_.requirements) {
    if (requirement.chain.front().name != name) continue;
    (requirement.range ? holders : said).push_back(requirement.chain.front().version);
  }
  return said.empty() ? holders : said;
}

bool ClashCheck::leavesChoice(const Versions& chosen, Name next) const {
  if (next == names_.end()) return areMetBy(chosen);
  const auto versions = versionsOf(*next);
  return std::any_of(versions.begin(), versions.end(), [&](const VersionId& version) {
    Versions more = chosen;
    more.emplace(*next, version);
    return leavesChoice(more, std::next(next));
  });
}

bool ClashCheck::areMetBy(const Versions& chosen) const {
  const auto& told = clash_.requirements;
  return std::all_of(told.begin(), told.end(), [&](const Requirement& requirement) {
    const auto& [name, version] = requirement.chain.back();
    return areChainedBy(chosen, requirement.chain) &&
           (!requirement.range || chosen.at(name) != version ||
            includes(*requirement.range, requirement.name, chosen));
  });
}

bool ClashCheck::areChainedBy(const Versions& chosen,
                              const std::vector<NamedVersion>& chain) const {
  for (std::size_t link = 0; link + 1 < chain.size(); ++link) {
    const auto& [name, version] = chain[link];
    if (chosen.at(name) != version) continue;
    const std::u16string& next = chain[link + 1].name;
    const Metamodel holder = *repository_.getMetamodel(name, version);
    const bool isMet = std::all_of(
        holder.dependencies.begin(), holder.dependencies.end(), [&](const Dependency& dependency) {
          return dependency.name != next || includes(dependency.range, next, chosen);
        });
    if (!isMet) return false;
  }
  return true;
}

bool ClashCheck::includes(const VersionRange& range, const std::u16string& name,
                          const Versions& chosen) const {
  return repository_.includes(range, *repository_.getMetamodel(name, chosen.at(name)));
}

}  // namespace test
