#pragma once

#include <string>
#include <vector>

#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/model/row_repository.hpp"

namespace tarn::evolution::catalogue::c {

/// What a host's callbacks answer. A callback that fails, and rows that could not be added, throw
/// CallbackFailed.
class CallbackRepository : public RowRepository {
 public:
  explicit CallbackRepository(const tarn_evolution_callbacks& callbacks) : callbacks_(callbacks) {
    if (callbacks_.find_requirements != nullptr) useRequirements(*this);
  }
  ~CallbackRepository() override;

  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

  std::vector<std::u16string> listNames() override;

 protected:
  std::vector<CatalogueMetamodel> rowsOf(const std::u16string& name,
                                         std::span<const pathfinder::VersionRange> ranges) override;
  std::vector<pathfinder::Hop> hopsOf(const std::u16string& name,
                                      const pathfinder::VersionId* from) override;

 private:
  const tarn_evolution_callbacks callbacks_;
};

}  // namespace tarn::evolution::catalogue::c
