#include "catalogue/json_writer.hpp"

#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "catalogue/printed_text.hpp"
#include "catalogue/range_json.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;

namespace {

ordered_json selectionToJson(const Selection& selection) {
  std::map<std::u16string, pathfinder::VersionId> sorted(selection.begin(), selection.end());
  ordered_json result = ordered_json::object();
  for (const auto& [name, version] : sorted) {
    result[fl::i18n::ustring_to_utf8(name)] = textOf(version);
  }
  return result;
}

}  // namespace

JsonCatalogueWriter::JsonCatalogueWriter(std::ostream& out) : out_(out) {
  out_ << "{\"metamodels\":[";
}

void JsonCatalogueWriter::addMetamodel(const CatalogueMetamodel& metamodel) {
  const auto& [descriptor, equivalent] = metamodel;
  ordered_json row{{"name", fl::i18n::ustring_to_utf8(descriptor.name)},
                   {"version", textOf(descriptor.version)}};
  if (equivalent) row["semver"] = textOf(*equivalent);
  ordered_json& dependencies = row["dependencies"] = ordered_json::array();
  for (const auto& [name, range] : descriptor.dependencies) {
    dependencies.push_back(
        {{"name", fl::i18n::ustring_to_utf8(name)}, {"range", rangeToJson(range)}});
  }
  beginRow();
  out_ << row.dump();
}

void JsonCatalogueWriter::addHop(const pathfinder::Hop& hop) {
  if (!isInHops_) endMetamodels();
  const ordered_json row{{"name", fl::i18n::ustring_to_utf8(hop.name)},
                         {"from", textOf(hop.from)},
                         {"to", textOf(hop.to)},
                         {"expensive", hop.expensive}};
  beginRow();
  out_ << row.dump();
}

void JsonCatalogueWriter::setQuestion(const Question& question) {
  endHops();
  const ordered_json value{{"from", selectionToJson(question.from)},
                           {"to", selectionToJson(question.to)}};
  out_ << ",\n\"question\":" << value.dump();
}

void JsonCatalogueWriter::finish() {
  endHops();
  out_ << "}\n";
}

void JsonCatalogueWriter::beginRow() {
  out_ << (isFirstRow_ ? "\n" : ",\n");
  isFirstRow_ = false;
}

void JsonCatalogueWriter::endMetamodels() {
  if (isInMetamodels_) out_ << "],\n\"hops\":[";
  isInMetamodels_ = false;
  isInHops_ = true;
  isFirstRow_ = true;
}

void JsonCatalogueWriter::endHops() {
  if (isInMetamodels_) endMetamodels();
  if (isInHops_) out_ << "]";
  isInHops_ = false;
}

}  // namespace tarn::evolution::catalogue
