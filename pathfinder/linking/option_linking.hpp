#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "pathfinder/linking/linked_metamodel_cache.hpp"

namespace tarn::evolution::pathfinder {

/// For each name that a metamodel depends on, what may be linked for it.
using OptionsByName = std::unordered_map<std::u16string, LinkedMetamodels>;

/// Links `root`, which has no links yet, in every consistent way: one linked metamodel for each
/// choice of options that agree. Throws ConflictingDependencies when there is no such choice.
LinkedMetamodels linkOptions(const std::shared_ptr<LinkedMetamodel>& root,
                             const OptionsByName& optionsByName);

}  // namespace tarn::evolution::pathfinder
