#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;

ordered_json stepToJson(const PathPicture& picture, const PathPicture::Step& step) {
  ordered_json hops = ordered_json::array();
  ordered_json broughtIn = ordered_json::array();
  for (const auto& [lane, from, to, kind] : step.moves) {
    const std::string& name = picture.lanes[lane].name;
    if (kind == PathPicture::MoveKind::entering) {
      broughtIn.push_back({{"name", name}, {"version", to}});
    } else {
      const bool isExpensive = kind == PathPicture::MoveKind::expensive;
      hops.push_back({{"name", name}, {"from", from}, {"to", to}, {"expensive", isExpensive}});
    }
  }
  return {{"weight", step.weight}, {"hops", hops}, {"broughtIn", broughtIn}};
}

ordered_json stepsToJson(const PathPicture& picture) {
  ordered_json steps = ordered_json::array();
  for (const PathPicture::Step& step : picture.steps) steps.push_back(stepToJson(picture, step));
  return steps;
}

}  // namespace tarn::evolution::catalogue
