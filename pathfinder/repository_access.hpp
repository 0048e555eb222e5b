#pragma once

#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/linking_host.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// A repository as linking and the searches see it. Refers to the repository.
class RepositoryAccess final : public LinkingHost, public SelectionHost {
 public:
  explicit RepositoryAccess(VersionRepository& repository) : repository_(repository) {}

  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    repository_.findMetamodels(name, range, result);
  }
  void findRequirements(const Metamodel& metamodel, std::vector<PeerRequirement>& result) override {
    result = repository_.getRequirements(metamodel);
  }
  void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) override {
    repository_.loadMetamodel(linked);
  }
  void noteLinked() override { repository_.invalidatePathfindingCache(); }

  std::optional<Metamodel> getMetamodel(const std::u16string& name,
                                        const VersionId& version) override {
    return repository_.getMetamodel(name, version);
  }
  const LinkedMetamodels& getLinkedMetamodels(const Metamodel& metamodel) override {
    return repository_.getLinkedMetamodels(metamodel);
  }
  bool hasRequirements() override { return repository_.hasRequirements(); }
  const ResolvedRequirements& requirementsOf(const Metamodel& metamodel) override {
    return repository_.requirementsOf(metamodel);
  }
  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    repository_.findHops(name, from, result);
  }
  std::shared_ptr<LinkedMetamodel> linkAlone(const Metamodel& metamodel,
                                             const OptionsByName& chosen) override {
    return repository_.linkAlone(metamodel, chosen);
  }
  Direction directionBetween(const Metamodel& from, const Metamodel& to) override {
    return static_cast<Direction>(repository_.getDirection(from, to));
  }

  Direction directionBetween(const VersionBaseline& from, const VersionBaseline& to) {
    return static_cast<Direction>(repository_.computeDirection(from, to));
  }

 private:
  VersionRepository& repository_;
};

}  // namespace tarn::evolution::pathfinder
