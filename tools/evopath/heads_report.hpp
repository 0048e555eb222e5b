#pragma once

#include "catalogue/comparison/heads_to_heads.hpp"

namespace evopath {

/// Says on standard error how many questions were left out, if any were, and what their bound is.
void tellLeftOut(const tarn::evolution::catalogue::HeadQuestions& asked);
void tellLeftOutTogether(const tarn::evolution::catalogue::HeadQuestions& asked);

}  // namespace evopath
