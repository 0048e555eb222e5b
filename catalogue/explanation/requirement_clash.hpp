#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/clash.hpp"
#include "catalogue/explanation/linkable_repository.hpp"

namespace tarn::evolution::catalogue {

/// Of two versions that are held together, by name, one of which requires another one of the
/// other's name: as a clash. None when what is held excludes nothing of it.
std::optional<Clash> findExcluded(
    pathfinder::VersionRepository& repository,
    const std::map<std::u16string, const pathfinder::Metamodel*>& held);

/// Why a version cannot stand beside any of the versions that other names may have: some
/// requirement between it and all of one name. None when no requirement tells.
std::optional<Clash> findRequirementClash(
    LinkableRepository& repository, const pathfinder::Metamodel& version,
    const std::vector<std::vector<pathfinder::Metamodel>>& others);

}  // namespace tarn::evolution::catalogue
