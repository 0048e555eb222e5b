#include "catalogue/explanation/own_name.hpp"

#include <unordered_set>

#include "catalogue/model/admitted_versions.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Metamodel;

bool leadsToOwnName(LinkableRepository& repository, const Metamodel& metamodel) {
  std::vector<Metamodel> open{metamodel};
  std::unordered_set<Metamodel> met;
  while (!open.empty()) {
    const Metamodel current = std::move(open.back());
    open.pop_back();
    for (const Dependency& dependency : current.dependencies) {
      if (dependency.name == metamodel.name) return true;
      for (Metamodel& candidate : listAdmitted(repository, dependency.name, dependency.range)) {
        if (met.insert(candidate).second) open.push_back(std::move(candidate));
      }
    }
  }
  return false;
}

}  // namespace tarn::evolution::catalogue
