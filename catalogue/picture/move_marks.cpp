#include "catalogue/picture/move_marks.hpp"

namespace tarn::evolution::catalogue {

const char* styleClassOf(PathPicture::MoveKind kind) {
  switch (kind) {
    case PathPicture::MoveKind::Expensive:
      return "dear";
    case PathPicture::MoveKind::Entering:
      return "enter";
    case PathPicture::MoveKind::Ordinary:
      break;
  }
  return "move";
}

std::string tooltipOf(const PathPicture& picture, const PathPicture::Lane& lane,
                      const PathCell& cell) {
  if (cell.move != nullptr) return describe(picture, *cell.move);
  return lane.name + " at " + cell.version;
}

}  // namespace tarn::evolution::catalogue
