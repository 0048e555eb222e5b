#pragma once

#include "pathfinder/linking/version_lookup.hpp"

namespace tarn::evolution::pathfinder {

/// The linked metamodels of a descriptor; null when it cannot be linked, and so never be held. An
/// attempt to hold it, should there be one, reports the conflict.
const LinkedMetamodels* tryLink(VersionLookup& lookup, const Metamodel& descriptor);

}  // namespace tarn::evolution::pathfinder
