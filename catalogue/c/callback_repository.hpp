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
  explicit CallbackRepository(const tarn_evolution_callbacks& callbacks) : callbacks_(callbacks) {}
  ~CallbackRepository() override;

  std::vector<std::u16string> listNames() override;

  /// Rows of hosts have none.
  std::u16string findVersionNote(const std::u16string& /*name*/,
                                 const pathfinder::VersionId& /*version*/) override {
    return {};
  }

 protected:
  std::vector<CatalogueMetamodel> rowsOf(const std::u16string& name,
                                         const pathfinder::VersionRange* range) override;
  std::vector<pathfinder::Hop> hopsOf(const std::u16string& name,
                                      const pathfinder::VersionId* from) override;

 private:
  const tarn_evolution_callbacks callbacks_;
};

}  // namespace tarn::evolution::catalogue::c
