#pragma once

#include "catalogue/comparison/heads_to_heads.hpp"

namespace evopath {

/// Says on standard error how many questions were left out, if any were, and what their bound is:
/// that of metamodels together or that of one chain.
void tellLeftOut(const tarn::evolution::catalogue::HeadQuestions& asked, bool areTogether);

}  // namespace evopath
