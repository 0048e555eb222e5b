#pragma once

#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"

/// What a command line names must be there. Each throws std::invalid_argument, in the same words
/// and with the nearest names and versions, for what is not.
namespace evopath {

void expectKnown(tarn::evolution::catalogue::BrowsableRepository& repository,
                 const tarn::evolution::catalogue::Question& question);
void expectKnown(tarn::evolution::catalogue::BrowsableRepository& repository,
                 const tarn::evolution::catalogue::Selection& selection);
void expectKnown(tarn::evolution::catalogue::BrowsableRepository& repository,
                 const std::vector<std::u16string>& names);

}  // namespace evopath
