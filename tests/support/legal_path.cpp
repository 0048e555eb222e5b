#include "support/legal_path.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "pathfinder/requirement.hpp"

namespace test {

namespace {

/// Whether a baseline has all beside it that one of its metamodels requires.
bool hasRequired(VersionRepository& repository, const VersionBaseline& baseline,
                 const Metamodel& metamodel) {
  auto* const source = dynamic_cast<RequirementSource*>(&repository);
  if (source == nullptr) return true;
  std::vector<PeerRequirement> required;
  source->findRequirements(metamodel, required);
  return std::all_of(required.begin(), required.end(), [&](const PeerRequirement& requirement) {
    const auto held = baseline.metamodels.find(requirement.name);
    if (held == baseline.metamodels.end()) return requirement.isOptional;
    std::vector<Metamodel> admitted;
    repository.findMetamodels(requirement.name, requirement.range, admitted);
    return std::find(admitted.begin(), admitted.end(), *held->second) != admitted.end();
  });
}

}  // namespace

void expectLegal(VersionRepository& repository, const std::vector<BaselineHop>& path) {
  for (std::size_t i = 0; i < path.size(); ++i) {
    const auto& [from, to, hops] = path[i];
    EXPECT_TRUE(i == 0 || from == path[i - 1].to);
    for (const auto& [name, before] : from.metamodels) {
      const auto hop = hops.find(name);
      EXPECT_EQ(to.metamodels.at(name)->version,
                hop == hops.end() ? before->version : hop->second.to);
      if (hop == hops.end()) continue;
      const std::vector<Hop> offered = hopsFrom(repository, *before);
      EXPECT_NE(std::find(offered.begin(), offered.end(), hop->second), offered.end());
    }
    for (const auto& [name, linked] : to.metamodels) {
      EXPECT_TRUE(hasRequired(repository, to, *linked)) << *linked << " in " << to;
      for (const auto& [needed, range] : linked->dependencies) {
        const auto held = to.metamodels.find(needed);
        ASSERT_NE(held, to.metamodels.end()) << to;
        std::vector<Metamodel> admitted;
        repository.findMetamodels(needed, range, admitted);
        EXPECT_NE(std::find(admitted.begin(), admitted.end(), *held->second), admitted.end()) << to;
      }
    }
  }
}

std::uint64_t weightOf(const VersionRepository& repository, const std::vector<BaselineHop>& path) {
  std::uint64_t weight = 0;
  for (const BaselineHop& step : path) weight += repository.getWeight(step.hops);
  return weight;
}

bool linksOwnName(const VersionBaseline& baseline) {
  return std::any_of(baseline.metamodels.begin(), baseline.metamodels.end(), [](const auto& held) {
    return held.second->linkedMetamodels.contains(held.first);
  });
}

}  // namespace test
