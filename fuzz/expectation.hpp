#pragma once

#include <cstdlib>
#include <iostream>

namespace fuzz {

/// Ends the process, which the fuzzer takes as a fault found, unless something holds. `tell` writes
/// to a stream what was found.
template <class Tell>
void expect(bool holds, const Tell& tell) {
  if (holds) return;
  tell(std::cerr);
  std::cerr << std::endl;
  std::abort();
}

}  // namespace fuzz
