#pragma once

#include <string>

#include "catalogue/picture/path_picture.hpp"

/// How swim lanes mark moves, in SVG and in HTML.
namespace tarn::evolution::catalogue {

/// The class that the style sheets know moves of that kind by.
const char* styleClassOf(PathPicture::MoveKind kind);

/// What a lane's place shows when a reader rests on it.
std::string tooltipOf(const PathPicture& picture, const PathPicture::Lane& lane,
                      const PathCell& cell);

/// Why the moves of a step go together, a line for each reason; empty where nothing is known.
std::string whyTogether(const PathPicture::Step& step);

}  // namespace tarn::evolution::catalogue
