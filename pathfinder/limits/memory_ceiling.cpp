#include "pathfinder/limits/memory_ceiling.hpp"

#include <unistd.h>

#include <stdexcept>

#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

namespace {

std::size_t halfOfMemory() {
  const auto bytes = static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) *
                     static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return bytes / 2;
}

}  // namespace

void refuseMoreThanFits(std::size_t count, std::size_t bytesEach, const std::string& what) {
  if (SearchWatch* watch = SearchWatch::current()) {
    watch->noteMemory(count * bytesEach);
    watch->check();
  }
  if (count <= halfOfMemory() / bytesEach) return;
  throw std::length_error(what + " can be combined in more than " + std::to_string(count - 1) +
                          " ways, which is more than memory holds.");
}

}  // namespace tarn::evolution::pathfinder
