#pragma once

#include <vector>

#include "catalogue/explanation/explanation.hpp"

namespace tarn::evolution::catalogue {

/// What a catalogue tells of the versions, hops and dependencies that an explanation names, but for
/// those that it has in common with every path: versions that are only passed by unmoved.
std::vector<ExplanationNote> collectNotes(BrowsableRepository& content,
                                          const Explanation& explanation);

}  // namespace tarn::evolution::catalogue
