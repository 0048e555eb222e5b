#include "catalogue/json_writer.hpp"

#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <string>

#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::ordered_json;
using pathfinder::VersionRange;

namespace {

template <class Version>
std::string printed(const Version& version) {
  std::ostringstream out;
  out << version;
  return out.str();
}

ordered_json rangeAsJson(const VersionRange& range) {
  if (!range.isSemVerRange()) return fl::i18n::ustring_to_utf8(range.getText());
  const auto& [lower, upper] = range.getSemVerRange();
  if (range == VersionRange::singleVersion(lower)) return printed(lower);
  return {printed(lower), printed(upper)};
}

ordered_json selectionAsJson(const Selection& selection) {
  std::map<std::u16string, pathfinder::VersionId> sorted(selection.begin(), selection.end());
  ordered_json result = ordered_json::object();
  for (const auto& [name, version] : sorted) {
    result[fl::i18n::ustring_to_utf8(name)] = printed(version);
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
                   {"version", printed(descriptor.version)}};
  if (equivalent) row["semver"] = printed(*equivalent);
  ordered_json& dependencies = row["dependencies"] = ordered_json::array();
  for (const auto& [name, range] : descriptor.dependencies) {
    dependencies.push_back(
        {{"name", fl::i18n::ustring_to_utf8(name)}, {"range", rangeAsJson(range)}});
  }
  beginRow();
  out_ << row.dump();
}

void JsonCatalogueWriter::addHop(const pathfinder::Hop& hop) {
  if (!isInHops_) endMetamodels();
  const ordered_json row{{"name", fl::i18n::ustring_to_utf8(hop.name)},
                         {"from", printed(hop.from)},
                         {"to", printed(hop.to)},
                         {"expensive", hop.expensive}};
  beginRow();
  out_ << row.dump();
}

void JsonCatalogueWriter::setQuestion(const Question& question) {
  endHops();
  const ordered_json value{{"from", selectionAsJson(question.from)},
                           {"to", selectionAsJson(question.to)}};
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
