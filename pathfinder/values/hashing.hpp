#pragma once

#include <cstddef>
#include <string>

#include "pathfinder/version_id.hpp"

/// The building blocks that all hashes of the library share. Arithmetic wraps at 64 bits.
namespace tarn::evolution::pathfinder {

/// Boost's hash_combine step.
inline std::size_t mixHash(std::size_t seed, std::size_t value) noexcept {
  return seed ^ (value + 0x9e3779b9 + (seed << 6) + (seed >> 2));
}

/// A text by its standard hash; a semantic version by major * 1000000 + minor * 1000 + patch, so
/// that versions with components of 1000 or more may collide.
std::size_t hashVersion(const VersionId& version) noexcept;

/// Name and version of one metamodel.
std::size_t hashNameAndVersion(const std::u16string& name, const VersionId& version) noexcept;

}  // namespace tarn::evolution::pathfinder
