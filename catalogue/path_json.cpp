#include "catalogue/path_json.hpp"

#include <ostream>

#include "catalogue/step_json.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;

void writePathJson(const PathPicture& picture, std::ostream& out) {
  ordered_json steps = ordered_json::array();
  for (const PathPicture::Step& step : picture.steps) steps.push_back(stepToJson(picture, step));
  const ordered_json document{{"found", true}, {"weight", picture.weight}, {"steps", steps}};
  out << document.dump(2) << "\n";
}

}  // namespace tarn::evolution::catalogue
