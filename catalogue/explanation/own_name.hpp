#pragma once

#include "catalogue/explanation/linkable_repository.hpp"

namespace tarn::evolution::catalogue {

/// Whether dependencies lead from a version to its own name. Another version of that name may then
/// be linked to it, and stands back where it is held itself.
bool leadsToOwnName(LinkableRepository& repository, const pathfinder::Metamodel& metamodel);

}  // namespace tarn::evolution::catalogue
