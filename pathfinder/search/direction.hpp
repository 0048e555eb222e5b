#pragma once

#include <cstdint>

namespace tarn::evolution::pathfinder {

/// `VersionRepository::Direction`, with the same numbers.
enum class Direction : std::int32_t { Equal = 0, Forward = 1, Backward = 2, Unknown = 3 };

/// Whether one of the two is forward and the other backward.
constexpr bool areOpposite(Direction left, Direction right) {
  return (left == Direction::Forward && right == Direction::Backward) ||
         (left == Direction::Backward && right == Direction::Forward);
}

/// The name of the value; empty for a number that is none.
constexpr const char* nameOf(Direction direction) {
  switch (direction) {
    case Direction::Equal:
      return "Equal";
    case Direction::Forward:
      return "Forward";
    case Direction::Backward:
      return "Backward";
    case Direction::Unknown:
      return "Unknown";
  }
  return "";
}

}  // namespace tarn::evolution::pathfinder
