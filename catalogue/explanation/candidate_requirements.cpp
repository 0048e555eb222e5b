// Breadth-first search along the dependencies of a linked metamodel.

#include "catalogue/explanation/candidate_requirements.hpp"

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

#include "catalogue/model/admitted_versions.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::LinkedMetamodel;
using pathfinder::Metamodel;
using pathfinder::VersionId;

namespace {

const Dependency* dependencyOn(const Metamodel& metamodel, const std::u16string& name) {
  const auto& dependencies = metamodel.dependencies;
  const auto found =
      std::find_if(dependencies.begin(), dependencies.end(),
                   [&](const Dependency& dependency) { return dependency.name == name; });
  return found == dependencies.end() ? nullptr : &*found;
}

}  // namespace

const LinkedMetamodel* heldBy(const std::shared_ptr<LinkedMetamodel>& candidate,
                              const std::u16string& name) {
  if (candidate->name == name) return candidate.get();
  const auto link = candidate->linkedMetamodels.find(name);
  return link == candidate->linkedMetamodels.end() ? nullptr : link->second.get();
}

std::vector<Requirement> requirementsOf(const std::shared_ptr<LinkedMetamodel>& candidate,
                                        const std::u16string& name) {
  std::vector<Requirement> result;
  const Requirement itself{{{candidate->name, candidate->version}}, name, std::nullopt};
  if (candidate->name == name) result.push_back(itself);
  std::map<const LinkedMetamodel*, const LinkedMetamodel*> parents{{candidate.get(), nullptr}};
  std::deque<const LinkedMetamodel*> waiting{candidate.get()};
  for (; !waiting.empty(); waiting.pop_front()) {
    const LinkedMetamodel* const current = waiting.front();
    if (const Dependency* dependency = dependencyOn(*current, name)) {
      Requirement& requirement = result.emplace_back();
      requirement.name = name;
      requirement.range = dependency->range;
      for (const auto* link = current; link != nullptr; link = parents.at(link)) {
        requirement.chain.insert(requirement.chain.begin(), {link->name, link->version});
      }
    }
    for (const Dependency& dependency : current->dependencies) {
      // What it links itself: under the candidate's own name that may be another version.
      const auto link = current->linkedMetamodels.find(dependency.name);
      if (link == current->linkedMetamodels.end()) continue;
      const LinkedMetamodel* const next = link->second.get();
      if (parents.emplace(next, current).second) waiting.push_back(next);
    }
  }
  if (result.empty()) result.push_back(itself);  // an application has linked it
  return result;
}

std::vector<VersionId> admittedBy(pathfinder::VersionRepository& repository,
                                  const Requirement& requirement,
                                  const std::shared_ptr<LinkedMetamodel>& candidate) {
  if (!requirement.range) {
    const LinkedMetamodel* const held = heldBy(candidate, requirement.name);
    return held == nullptr ? std::vector<VersionId>() : std::vector{held->version};
  }
  std::vector<VersionId> result;
  for (Metamodel& metamodel : listAdmitted(repository, requirement.name, *requirement.range)) {
    result.push_back(std::move(metamodel.version));
  }
  return result;
}

void addRequirement(const Requirement& requirement, std::vector<Requirement>& ofParty) {
  const auto alike = std::find_if(ofParty.begin(), ofParty.end(), [&](const Requirement& known) {
    return known.name == requirement.name && known.chain.back() == requirement.chain.back() &&
           known.range == requirement.range;
  });
  if (alike == ofParty.end()) {
    ofParty.push_back(requirement);
  } else if (requirement.chain.size() < alike->chain.size()) {
    *alike = requirement;
  }
}

}  // namespace tarn::evolution::catalogue
