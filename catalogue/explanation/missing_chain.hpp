#pragma once

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/posed_question.hpp"

namespace tarn::evolution::catalogue {

/// The goals to which no hops lead from their starts.
std::vector<MissingChain> findMissingChains(const PosedQuestion& question);

}  // namespace tarn::evolution::catalogue
