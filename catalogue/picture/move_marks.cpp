#include "catalogue/picture/move_marks.hpp"

namespace tarn::evolution::catalogue {

const char* styleClassOf(PathPicture::MoveKind kind) {
  switch (kind) {
    case PathPicture::MoveKind::expensive:
      return "dear";
    case PathPicture::MoveKind::entering:
      return "enter";
    case PathPicture::MoveKind::ordinary:
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
