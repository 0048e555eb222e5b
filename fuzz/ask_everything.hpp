#pragma once

#include "catalogue/browsable_repository.hpp"

namespace fuzz {

/// Asks a repository for all that it lists, and its own question if it is small enough to be
/// settled at once. CatalogueError and the path finder's own errors are taken as answers.
void askEverything(tarn::evolution::catalogue::BrowsableRepository& repository);

}  // namespace fuzz
