#include "catalogue/range_json.hpp"

#include "catalogue/printed_text.hpp"
#include "catalogue/range_text.hpp"

namespace tarn::evolution::catalogue {

nlohmann::ordered_json rangeToJson(const pathfinder::VersionRange& range) {
  if (const auto single = findSingleVersion(range)) return textOf(*single);
  const auto& [lower, upper] = range.getSemVerRange();
  return {textOf(lower), textOf(upper)};
}

}  // namespace tarn::evolution::catalogue
