#pragma once

#include <iosfwd>
#include <string>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explorer/explorer_answers.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A catalogue as one self-contained page to look around in: metamodels, which can be searched for,
/// their versions, hops, dependencies and dependants, and the answers. Source and target can be
/// picked; where none of the answers is theirs, the page shows the command line that asks for it.
/// Asks nothing of the network, but needs scripts.
///
/// `catalogue` is how the command line names the catalogue. Reads every version and hop once; what
/// is read and what is written are in memory meanwhile.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeExplorerHtml(BrowsableRepository& repository,
                                                       const std::string& catalogue,
                                                       const ExplorerAnswers& answers,
                                                       std::ostream& out);

}  // namespace tarn::evolution::catalogue
