#pragma once

#include <cstddef>
#include <string>

namespace tarn::evolution::pathfinder {

/// Keeps a product from taking all memory: half of the machine's may be taken.
///
/// `count`: of what is about to be made; `bytesEach`: a rough measure. Throws std::length_error
/// that begins with `what`, such as "A selection of 3 metamodels", or SearchStopped if it is the
/// memory limit of this thread's search that would be passed.
void refuseMoreThanFits(std::size_t count, std::size_t bytesEach, const std::string& what);

/// As many of that size are let pass without a look at what they are.
constexpr std::size_t surelyFit(std::size_t bytesEach) {
  return (std::size_t{1} << 20) / bytesEach;
}

}  // namespace tarn::evolution::pathfinder
