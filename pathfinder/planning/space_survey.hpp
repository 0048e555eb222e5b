#pragma once

#include <memory>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Asks the application, once for each version, for all that can lie on a path: versions within
/// reach of the sources by hops and by what links bring in, their hops, and their linked
/// metamodels.
///
/// Left out are versions that cannot be linked and, for a name that every target mentions, versions
/// from which no hops lead to a target's: no path holds them. The latter are not linked either.
///
/// Bystanders are not even asked for their hops (see `Bystanders`).
///
/// Null when a source is not a consistent baseline of the repository's own linked metamodels,
/// when the application answers a name with a metamodel of another name, or when a metamodel links
/// another version of itself: such questions have no space.
std::unique_ptr<const SearchSpace> surveySearchSpace(const SearchQuestion& question);

}  // namespace tarn::evolution::pathfinder
