#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pathfinder/semver.hpp"

namespace tarn::evolution::catalogue {

/// A version as registries write them: numbers, then perhaps a pre-release or another ending.
///
/// Their order is that of Semantic Versioning 2.0.0 where both follow it: numbers first, a
/// pre-release before its release, build metadata of no account. Beyond that, more numbers come
/// after fewer, and an ending that does not read as one of a pre-release comes after its release.
/// What does not begin with a number comes before everything else.
struct FullVersion {
  bool hasNumbers = false;
  bool isSemantic = false;  ///< up to three numbers, then at most a pre-release and metadata
  pathfinder::SemVer core;  ///< numbers that are missing are 0
  std::vector<std::uint64_t> further;    ///< the fourth number and those after it
  std::int8_t phase = 0;                 ///< -1 a pre-release, 1 what comes after a release
  std::vector<std::string> identifiers;  ///< of the pre-release or other ending

  bool isPrerelease() const noexcept { return phase < 0; }
};

/// Reads any text; a leading "v" before a number does not count.
FullVersion parseFullVersion(std::string_view text);

/// Orders by precedence; versions that differ in build metadata only are equivalent.
std::weak_ordering comparePrecedence(const FullVersion& left, const FullVersion& right);

/// The next version there can be; empty after the greatest one.
std::optional<pathfinder::SemVer> nextPatch(const pathfinder::SemVer& version);

}  // namespace tarn::evolution::catalogue
