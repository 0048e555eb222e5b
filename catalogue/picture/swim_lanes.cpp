#include "catalogue/picture/swim_lanes.hpp"

#include <algorithm>
#include <cmath>

#include "catalogue/text/display_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr double longestName = 24;     // in units of the font size
constexpr double longestVersion = 12;  // the same

/// The heading of a step's column is set bold, which takes more room.
int headingWidth(const PathPicture& picture, std::size_t column) {
  if (column == 0) return estimatePixels("Start ", SwimLanes::fontSize);
  const auto& step = picture.steps[column - 1];
  return std::max(estimatePixels("Step " + std::to_string(column) + "  ", SwimLanes::fontSize),
                  estimatePixels("weight " + weightText(step.weight), SwimLanes::smallFontSize));
}

}  // namespace

int estimatePixels(const std::string& text, int fontSize) {
  return static_cast<int>(std::ceil(estimateWidth(toVisible(text)) * fontSize));
}

SwimLanes::SwimLanes(const PathPicture& picture, const std::vector<std::vector<PathCell>>& cells)
    : lanesBottom_(top(picture.lanes.size())) {
  int names = 0;
  for (const PathPicture::Lane& lane : picture.lanes) {
    names = std::max(names, estimatePixels(shortName(lane.name), fontSize));
  }
  lefts_.push_back(margin + names + 2 * boxPadding);
  for (std::size_t column = 0; column <= picture.steps.size(); ++column) {
    constexpr int gap = 12;
    const int offset = column == 0 ? boxPadding : arrowLength;
    int widest = offset + headingWidth(picture, column);
    for (const auto& row : cells) {
      if (row[column].kind == PathCell::Kind::Unmoved) continue;
      widest = std::max(widest, offset + boxWidth(row[column]));
    }
    lefts_.push_back(lefts_.back() + widest + gap);
  }
}

int SwimLanes::boxLeft(std::size_t column) const {
  return left(column) + (column == 0 ? boxPadding : arrowLength);
}

int SwimLanes::boxWidth(const PathCell& cell) const {
  return estimatePixels(shortVersion(cell.version), fontSize) + 2 * boxPadding +
         (hasBadge(cell) ? badgeWidth : 0);
}

std::string SwimLanes::shortName(const std::string& name) {
  return shortenTo(longestName, toVisible(name));
}

std::string SwimLanes::shortVersion(const std::string& version) {
  return shortenTo(longestVersion, toVisible(version));
}

bool SwimLanes::hasBadge(const PathCell& cell) {
  return cell.move != nullptr && cell.move->kind != PathPicture::MoveKind::Ordinary;
}

}  // namespace tarn::evolution::catalogue
