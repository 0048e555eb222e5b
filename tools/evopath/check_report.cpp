#include "check_report.hpp"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>

#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

constexpr Severity gravestFirst[] = {Severity::Error, Severity::Warning, Severity::Note};

std::size_t countOf(const CheckReport& report, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [&](const Finding& finding) { return severityOf(finding.code) == severity; }));
}

using Group = std::vector<const Finding*>;

void printGroup(FindingCode code, const Group& group, std::ostream& out) {
  out << nameOf(severityOf(code)) << " " << identifierOf(code) << ": " << titleOf(code) << "\n";
  std::size_t widest = 0;
  for (const Finding* finding : group) {
    widest = std::max(widest, countColumns(toVisible(finding->place.text)));
  }
  for (const Finding* finding : group) {
    out << "  " << padTo(widest, toVisible(finding->place.text)) << (widest > 0 ? "  " : "")
        << toVisible(finding->message) << "\n";
  }
}

}  // namespace

void printText(const CheckReport& report, std::ostream& out) {
  std::map<FindingCode, Group> groups;
  for (const Finding& finding : report.findings) groups[finding.code].push_back(&finding);
  for (const Severity severity : gravestFirst) {
    for (const auto& [code, group] : groups) {
      if (severityOf(code) == severity && severity >= report.least) printGroup(code, group, out);
    }
  }
  out << report.catalogue << ": ";
  std::string separator;
  for (const Severity severity : gravestFirst) {
    out << separator << countedText(countOf(report, severity), nameOf(severity));
    separator = ", ";
  }
  out << "\n";
}

void printJson(const CheckReport& report, std::ostream& out) {
  using nlohmann::ordered_json;
  ordered_json document{{"catalogue", report.catalogue}};
  for (const Severity severity : gravestFirst) {
    document[nameOf(severity) + "s"] = countOf(report, severity);
  }
  document["findings"] = ordered_json::array();
  for (const Finding& finding : report.findings) {
    if (severityOf(finding.code) < report.least) continue;
    ordered_json related = ordered_json::array();
    for (const auto& place : finding.related) related.push_back(place.text);
    document["findings"].push_back({{"code", identifierOf(finding.code)},
                                    {"severity", nameOf(severityOf(finding.code))},
                                    {"place", finding.place.text},
                                    {"message", finding.message},
                                    {"related", related}});
  }
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace evopath
