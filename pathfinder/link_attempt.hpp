#pragma once

#include "pathfinder/linked_metamodel_cache.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// The linked metamodels of a descriptor; null when it cannot be linked, and so never be held. An
/// attempt to hold it, should there be one, reports the conflict.
const LinkedMetamodels* tryLink(VersionRepository& repository, const Metamodel& descriptor);

}  // namespace tarn::evolution::pathfinder
