#include "support/catalogue_json.hpp"

#include <algorithm>

#include "catalogue/check/json_draft.hpp"
#include "catalogue/range_union.hpp"
#include "platform/exception.hpp"
#include "platform/text.hpp"

namespace test {

using nlohmann::ordered_json;
using namespace tarn::evolution::catalogue;

namespace {

ordered_json rangeJson(const VersionRange& range) {
  if (isUnion(range)) {
    ordered_json pieces = ordered_json::array();
    for (const VersionRange& piece : piecesOf(range)) pieces.push_back(rangeJson(piece));
    return {{"anyOf", pieces}};
  }
  if (!range.isSemVerRange()) return printed(range);
  const auto& [lower, upper] = range.getSemVerRange();
  return {printed(lower), printed(upper)};
}

}  // namespace

ordered_json toJson(TestRepository& repository) {
  ordered_json metamodels = ordered_json::array();
  for (const Metamodel& metamodel : repository.metamodels) {
    ordered_json dependencies = ordered_json::array();
    for (const auto& [name, range] : metamodel.dependencies) {
      dependencies.push_back(
          {{"name", fl::i18n::ustring_to_utf8(name)}, {"range", rangeJson(range)}});
    }
    const auto required = repository.requirements.find(brief(metamodel.name, metamodel.version));
    if (required != repository.requirements.end()) {
      for (const auto& [name, range, isOptional] : required->second) {
        dependencies.push_back(
            {{"name", fl::i18n::ustring_to_utf8(name)}, {"range", rangeJson(range)}});
        if (isOptional) dependencies.back()["optional"] = true;
      }
    }
    metamodels.push_back({{"name", fl::i18n::ustring_to_utf8(metamodel.name)},
                          {"version", printed(metamodel.version)},
                          {"dependencies", dependencies}});
    if (metamodel.version.isSemVer()) continue;
    if (const auto equivalent = repository.extractSemVer(metamodel)) {
      metamodels.back()["semver"] = printed(*equivalent);
    }
  }
  ordered_json hops = ordered_json::array();
  for (const Hop& hop : repository.hops) {
    hops.push_back({{"name", fl::i18n::ustring_to_utf8(hop.name)},
                    {"from", printed(hop.from)},
                    {"to", printed(hop.to)},
                    {"expensive", hop.expensive}});
  }
  return {{"metamodels", metamodels}, {"hops", hops}};
}

ordered_json selectionJson(const std::string& selected) {
  ordered_json result = ordered_json::object();
  for (const auto& [name, version] : selection(selected)) {
    result[fl::i18n::ustring_to_utf8(name)] = printed(version);
  }
  return result;
}

std::vector<Finding> findingsIn(const std::string& json, const CheckLimits& limits) {
  std::istringstream in(json);
  return check(readJsonDraft(in), limits);
}

bool hasError(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
    return severityOf(finding.code) == Severity::Error;
  });
}

bool anyLinksOwnName(tarn::evolution::catalogue::BrowsableRepository& repository) {
  for (const auto& name : repository.listNames()) {
    for (const auto& row : repository.listMetamodels(name)) {
      try {
        for (const auto& linked : repository.getLinkedMetamodels(row.descriptor)) {
          if (linked->linkedMetamodels.contains(name)) return true;
        }
      } catch (const foundation::core::except::IMsgIDException&) {
        continue;  // cannot be linked
      }
    }
  }
  return false;
}

}  // namespace test
