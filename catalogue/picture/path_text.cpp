#include "catalogue/picture/path_text.hpp"

#include <ostream>
#include <string>

namespace tarn::evolution::catalogue {

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
