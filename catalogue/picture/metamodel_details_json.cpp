#include <nlohmann/json.hpp>
#include <ostream>

#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/printed_text.hpp"
#include "catalogue/range_json.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;
using pathfinder::Hop;

namespace {

ordered_json versionToJson(const VersionDetails& version) {
  const pathfinder::Metamodel& descriptor = version.metamodel.descriptor;
  ordered_json json{{"version", textOf(descriptor.version)}};
  if (version.metamodel.equivalent) json["semver"] = textOf(*version.metamodel.equivalent);
  json["dependencies"] = ordered_json::array();
  for (const auto& [name, range] : descriptor.dependencies) {
    json["dependencies"].push_back(
        {{"name", fl::i18n::ustring_to_utf8(name)}, {"range", rangeToJson(range)}});
  }
  json["hopsIn"] = ordered_json::array();
  for (const Hop& hop : version.hopsIn) {
    json["hopsIn"].push_back({{"from", textOf(hop.from)}, {"expensive", hop.expensive}});
  }
  json["hopsOut"] = ordered_json::array();
  for (const Hop& hop : version.hopsOut) {
    json["hopsOut"].push_back({{"to", textOf(hop.to)}, {"expensive", hop.expensive}});
  }
  if (!version.variants) return json;
  json["variants"] = ordered_json::array();
  for (const auto& variant : *version.variants) {
    json["variants"].push_back(membersToJson(variant->linkedMetamodels));
  }
  return json;
}

void print(const char* field, const ordered_json& list, std::ostream& out) {
  out << ordered_json{{field, list}}.dump(2) << "\n";
}

}  // namespace

void writeSummaryJson(const std::vector<MetamodelSummary>& all, std::ostream& out) {
  ordered_json list = ordered_json::array();
  for (const auto& [name, count, first, last] : all) {
    list.push_back({{"name", fl::i18n::ustring_to_utf8(name)},
                    {"versions", count},
                    {"first", textOf(first)},
                    {"last", textOf(last)}});
  }
  print("metamodels", list, out);
}

void writeDetailsJson(const std::vector<MetamodelDetails>& details, std::ostream& out) {
  ordered_json list = ordered_json::array();
  for (const MetamodelDetails& metamodel : details) {
    ordered_json versions = ordered_json::array();
    for (const VersionDetails& version : metamodel.versions) {
      versions.push_back(versionToJson(version));
    }
    list.push_back({{"name", fl::i18n::ustring_to_utf8(metamodel.name)}, {"versions", versions}});
  }
  print("metamodels", list, out);
}

void writeBaselinesJson(const std::vector<pathfinder::VersionBaseline>& baselines,
                        std::ostream& out) {
  ordered_json list = ordered_json::array();
  for (const auto& baseline : baselines) list.push_back(membersToJson(baseline));
  print("baselines", list, out);
}

}  // namespace tarn::evolution::catalogue
