#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "pathfinder/learning/sat_solver.hpp"

namespace tarn::evolution::pathfinder {

/// Of assumptions that a formula refutes beside what is fixed, by their places, some that it
/// refutes as well, and of which none can be left out for that. No value when it refutes not even
/// all of them.
std::optional<std::vector<std::size_t>> findIrreducible(SatSolver& solver,
                                                        std::span<const Literal> fixed,
                                                        std::span<const Literal> assumptions);

}  // namespace tarn::evolution::pathfinder
