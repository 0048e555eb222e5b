#include "catalogue/picture/path_json.hpp"

#include <ostream>

#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;

void writePathJson(const PathPicture& picture, std::ostream& out) {
  const ordered_json document{
      {"found", true}, {"weight", picture.weight}, {"steps", stepsToJson(picture)}};
  out << document.dump(2) << "\n";
}

}  // namespace tarn::evolution::catalogue
