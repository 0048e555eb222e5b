#include "catalogue/picture/path_text.hpp"

#include <algorithm>
#include <ostream>
#include <string>

#include "catalogue/text/display_text.hpp"

namespace tarn::evolution::catalogue {

void writeStartText(const PathPicture& picture, Colouring colouring, std::ostream& out) {
  std::size_t columns = 0;
  for (const PathPicture::Lane& lane : picture.lanes) {
    if (!lane.start.empty()) columns = std::max(columns, countColumns(toVisible(lane.name)));
  }
  out << emphasise("Start", colouring) << "\n";
  for (const PathPicture::Lane& lane : picture.lanes) {
    if (lane.start.empty()) continue;
    out << "  " << padTo(columns, toVisible(lane.name)) << "  " << toVisible(lane.start) << "\n";
  }
}

void writePathText(const PathPicture& picture, Colouring colouring, std::ostream& out) {
  if (picture.steps.empty()) {
    out << "Nothing to do: the source holds every version asked for.\n";
    return;
  }
  const StepTextWriter writer(picture, colouring, out);
  for (std::size_t i = 0; i < picture.steps.size(); ++i) {
    writer.write(
        "Step " + std::to_string(i + 1) + ", weight " + weightText(picture.steps[i].weight), i);
  }
  out << emphasise(summarise(picture), colouring) << "\n";
}

}  // namespace tarn::evolution::catalogue
