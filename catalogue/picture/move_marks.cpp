#include "catalogue/picture/move_marks.hpp"

#include <set>

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

std::string whyTogether(const PathPicture::Step& step) {
  std::string reasons;
  std::set<std::string> told;
  for (const PathPicture::Tie& tie : step.ties) {
    if (told.insert(tie.reason).second) reasons += (reasons.empty() ? "" : "\n") + tie.reason;
  }
  return reasons;
}

std::string tooltipOf(const PathPicture& picture, const PathPicture::Lane& lane,
                      const PathCell& cell) {
  if (cell.move != nullptr) return describe(picture, *cell.move);
  return lane.name + " at " + cell.version;
}

}  // namespace tarn::evolution::catalogue
