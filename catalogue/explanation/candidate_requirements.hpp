#pragma once

#include <memory>
#include <string>
#include <vector>

#include "catalogue/explanation/clash.hpp"
#include "pathfinder/linked_metamodel.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::catalogue {

/// What a linked metamodel holds under a name, itself included; null when nothing.
const pathfinder::LinkedMetamodel* heldBy(
    const std::shared_ptr<pathfinder::LinkedMetamodel>& candidate, const std::u16string& name);

/// All that a candidate which holds a name asks of it, the shortest chains first; never empty.
/// Itself, when it bears the name or nothing in it depends on that.
std::vector<Requirement> requirementsOf(
    const std::shared_ptr<pathfinder::LinkedMetamodel>& candidate, const std::u16string& name);

/// The versions that suit a requirement which a candidate has; in the order of the repository.
std::vector<pathfinder::VersionId> admittedBy(
    pathfinder::VersionRepository& repository, const Requirement& requirement,
    const std::shared_ptr<pathfinder::LinkedMetamodel>& candidate);

/// Adds a requirement to those of one party. Of chains that end alike the shortest stays.
void addRequirement(const Requirement& requirement, std::vector<Requirement>& ofParty);

}  // namespace tarn::evolution::catalogue
