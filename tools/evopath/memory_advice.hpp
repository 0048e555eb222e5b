#pragma once

#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "pathfinder/search_limits.hpp"
#include "preference_option.hpp"

namespace evopath {

/// Throws std::runtime_error with the reason and what the question leaves open.
[[noreturn]] inline void failForMemory(tarn::evolution::catalogue::BrowsableRepository& repository,
                                       const tarn::evolution::catalogue::Question& question,
                                       const std::string& reason) {
  throw std::runtime_error(reason + "\n" + hintAtLooseEnds(repository, question));
}

/// What `ask` returns. When that takes more memory than there is or may be, and the question leaves
/// much open, says what.
template <class Ask>
auto adviseOnMemory(tarn::evolution::catalogue::BrowsableRepository& repository,
                    const tarn::evolution::catalogue::Question& question, const Ask& ask) {
  using tarn::evolution::pathfinder::SearchStopped;
  try {
    return ask();
  } catch (const std::bad_alloc&) {
    failForMemory(repository, question, "out of memory");
  } catch (const std::length_error& error) {
    failForMemory(repository, question, error.what());
  } catch (const SearchStopped& stopped) {
    if (stopped.reason() == SearchStopped::Reason::MemoryUsedUp) {
      std::cerr << hintAtLooseEnds(repository, question);
    }
    throw;
  }
}

}  // namespace evopath
