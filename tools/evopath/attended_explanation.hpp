#pragma once

#include "catalogue/explanation/explanation.hpp"
#include "exit_status.hpp"

namespace evopath {

/// The explanation, attended to as searches are. When a signal ends it, what is known by then goes
/// to standard error, and Interrupted is thrown.
tarn::evolution::catalogue::Explanation explainAttended(
    tarn::evolution::catalogue::BrowsableRepository& repository,
    const tarn::evolution::catalogue::Question& question, std::size_t budget,
    const tarn::evolution::pathfinder::SearchLimits& limits);

/// What the program says with its exit status about the answer that an explanation stands for.
ExitStatus statusOf(const tarn::evolution::catalogue::Explanation& explanation);

}  // namespace evopath
