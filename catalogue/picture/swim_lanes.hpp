#pragma once

#include <vector>

#include "catalogue/picture/path_picture.hpp"

namespace tarn::evolution::catalogue {

/// Where the lanes, columns and boxes of a swim-lane picture stand, in pixels. Columns are as wide
/// as their widest version or heading needs, so that no texts meet.
class SwimLanes {
 public:
  static constexpr int margin = 20;
  static constexpr int fontSize = 13;
  static constexpr int smallFontSize = 11;
  static constexpr int laneHeight = 34;
  static constexpr int boxHeight = 24;
  static constexpr int boxPadding = 8;
  static constexpr int arrowLength = 38;  ///< from a column's left edge to its boxes
  static constexpr int tieOffset = 13;    ///< of the line that ties moves, from the left edge
  static constexpr int badgeWidth = 18;   ///< at the right end of a box that has one
  static constexpr int firstLaneTop = 102;

  SwimLanes(const PathPicture& picture, const std::vector<std::vector<PathCell>>& cells);

  int left(std::size_t column) const { return lefts_[column]; }  ///< also of one past the last
  int width(std::size_t column) const { return left(column + 1) - left(column); }
  int boxLeft(std::size_t column) const;
  int boxWidth(const PathCell& cell) const;

  static int top(std::size_t lane) { return firstLaneTop + laneHeight * static_cast<int>(lane); }
  static int middle(std::size_t lane) { return top(lane) + laneHeight / 2; }

  int lanesRight() const { return lefts_.back(); }
  int lanesBottom() const { return lanesBottom_; }

  /// What fits of a name or a version.
  static std::string shortName(const std::string& name);
  static std::string shortVersion(const std::string& version);

  static bool hasBadge(const PathCell& cell);

 private:
  std::vector<int> lefts_;
  int lanesBottom_ = 0;
};

/// An upper estimate of a text's width in pixels.
int estimatePixels(const std::string& text, int fontSize);

}  // namespace tarn::evolution::catalogue
