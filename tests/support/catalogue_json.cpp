#include "support/catalogue_json.hpp"

#include <algorithm>
#include <sstream>

#include "catalogue/check/json_draft.hpp"
#include "catalogue/json_catalogue.hpp"
#include "platform/exception.hpp"
#include "platform/text.hpp"
#include "support/store_folder.hpp"

namespace test {

using nlohmann::ordered_json;
using namespace tarn::evolution::catalogue;

ordered_json toJson(TestRepository& repository) {
  std::stringstream text;
  writeJsonCatalogue(contentOf(repository), text);
  return ordered_json::parse(text);
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
