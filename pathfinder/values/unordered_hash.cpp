#include "pathfinder/values/unordered_hash.hpp"

#include <functional>

#include "pathfinder/values/hashing.hpp"

namespace tarn::evolution::pathfinder {

std::size_t UnorderedHash::operator()(const VersionBaseline& baseline) const noexcept {
  std::size_t result = 0;
  for (const auto& [name, linked] : baseline.metamodels) {
    result ^= linked ? hashNameAndVersion(linked->name, linked->version)
                     : std::hash<std::u16string>()(name) + 0x9e3779b9;
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
