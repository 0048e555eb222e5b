#pragma once

#include "catalogue/c/row_faults.hpp"
#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue::c {

/// What a version requires, as it was added.
struct RequirementRow {
  std::u16string name;
  pathfinder::VersionId version;
  pathfinder::PeerRequirement needed;
};

/// Gives metamodels what they require. Returns the position of the first requirement of a version
/// that is not there, which is passed over, or how many there are.
std::size_t addRequirements(const std::vector<RequirementRow>& requirements,
                            std::vector<CatalogueMetamodel>& metamodels);

}  // namespace tarn::evolution::catalogue::c

struct tarn_evolution_rows {
  tarn::evolution::catalogue::CatalogueContent content;
  std::vector<tarn::evolution::catalogue::c::RequirementRow> requirements;
  tarn::evolution::catalogue::c::RowFaults faults;
};
