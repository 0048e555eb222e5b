#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// A semantic version: exactly three unsigned numbers, without pre-release or build part.
struct TARN_EVOLUTION_PATHFINDER_EXPORT SemVer {
  std::uint64_t major = 0;
  std::uint64_t minor = 0;
  std::uint64_t patch = 0;

  /// Reads "1.2.3", or "1.2" as 1.2.0; empty when the text is no semantic version.
  ///
  /// Components are decimal without leading zeros, and anything else (sign, blank, prefix, suffix,
  /// a lone number, a fourth component) makes the result empty. The text ends at its first NUL
  /// unit. A component beyond 64 bits wraps modulo 2^64. Allocates nothing and never throws.
  static std::optional<SemVer> parse(const std::u16string& text);

  bool operator==(const SemVer& other) const;

  /// Lexicographic over (major, minor, patch), as all the other comparisons are.
  bool operator<(const SemVer& other) const;
  std::strong_ordering operator<=>(const SemVer& other) const = default;
};

/// Writes "major.minor.patch" through the stream's own number formatting.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out, const SemVer& version);

/// The semantic versions v with lower <= v < upper. A value-initialised range is [0.0.0, 0.0.0).
struct TARN_EVOLUTION_PATHFINDER_EXPORT SemVerRange {
  SemVer lower;
  SemVer upper;

  bool includes(const SemVer& version) const;

  /// Narrows this range to what it shares with `other`. Nothing shared gives [x, x), x being the
  /// larger lower bound.
  void intersect(const SemVerRange& other);

  /// A copy of this range, narrowed by `intersect`.
  SemVerRange intersection(const SemVerRange& other) const;

  /// Both bounds equal; two empty ranges at different places differ.
  bool operator==(const SemVerRange& other) const;
};

}  // namespace tarn::evolution::pathfinder
