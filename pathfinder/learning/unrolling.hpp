#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace tarn::evolution::pathfinder {

/// The versions of one name and what leads from one to another, by their places.
struct VersionGraph {
  struct Onward {
    std::size_t target;
    std::uint64_t weight;
  };

  std::vector<std::vector<Onward>> onward;
  std::vector<bool> isStart;
  std::vector<bool> isEnd;
  std::vector<std::uint64_t> distance;  ///< from the starts, or any other preference
};

/// Puts the versions that lie on a way from a start to an end in a line, so that hops go back in it
/// only where they form cycles. How often a way goes back tells ways through cycles apart: those
/// that do so fewer than k times are the ways of a graph without cycles, k times as large.
class Unrolling {
 public:
  explicit Unrolling(const VersionGraph& graph);

  /// Whether there are hops that go back.
  bool isCyclic() const { return isCyclic_; }

  const std::vector<std::size_t>& line() const { return line_; }
  bool isOnLine(std::size_t version) const { return places_[version] != off; }
  bool goesBack(std::size_t from, std::size_t to) const { return places_[from] >= places_[to]; }

  static constexpr std::uint64_t noWay = std::numeric_limits<std::uint64_t>::max();

  /// What a way from a start to an end weighs at least that goes back so often or more.
  std::uint64_t leastWeight(std::uint32_t laps) const;

 private:
  static constexpr std::size_t off = std::numeric_limits<std::size_t>::max();

  std::vector<bool> liveVersions() const;
  void lineUp();

  VersionGraph graph_;
  std::vector<std::size_t> line_;
  std::vector<std::size_t> places_;  // on the line, by version
  bool isCyclic_ = false;
};

/// Marks what edges lead to from some places, which are included.
std::vector<bool> reachedFrom(std::vector<std::size_t> open,
                              const std::vector<std::vector<std::size_t>>& edges);

}  // namespace tarn::evolution::pathfinder
