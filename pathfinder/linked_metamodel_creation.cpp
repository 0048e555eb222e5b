#include "pathfinder/linked_metamodel_creation.hpp"

#include <string>
#include <unordered_map>
#include <utility>

#include "messages/report_exception.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using LinkedMetamodels = std::vector<std::shared_ptr<LinkedMetamodel>>;

/// Every linked metamodel that satisfies the dependency, in the application's order of candidates.
LinkedMetamodels findOptions(VersionRepository& repository, const Dependency& dependency) {
  std::vector<Metamodel> candidates;
  repository.findMetamodels(dependency.name, dependency.range, candidates);
  LinkedMetamodels options;
  for (const Metamodel& candidate : candidates) {
    const LinkedMetamodels& variants = repository.getLinkedMetamodels(candidate);
    options.insert(options.end(), variants.begin(), variants.end());
  }
  return options;
}

/// A copy of each partial result linked to each option, options first, without those that conflict.
LinkedMetamodels linkEach(const LinkedMetamodels& partialResults, const LinkedMetamodels& options) {
  LinkedMetamodels results;
  for (const auto& option : options) {
    for (const auto& partial : partialResults) {
      auto linked = partial->clone();
      if (linked->linkMetamodel(option)) results.push_back(std::move(linked));
    }
  }
  return results;
}

}  // namespace

std::vector<std::shared_ptr<LinkedMetamodel>> linkDependencies(
    VersionRepository& repository, const std::shared_ptr<LinkedMetamodel>& root) {
  std::unordered_map<std::u16string, LinkedMetamodels> optionsByName;
  for (const Dependency& dependency : root->dependencies) {
    optionsByName.try_emplace(dependency.name, findOptions(repository, dependency));
  }
  LinkedMetamodels partialResults{root};
  for (const auto& [name, options] : optionsByName) {
    partialResults = linkEach(partialResults, options);
    if (partialResults.empty())
      tarn::reportException(tarn_evo::messages::ConflictingDependencies());
  }
  return partialResults;
}

}  // namespace tarn::evolution::pathfinder
