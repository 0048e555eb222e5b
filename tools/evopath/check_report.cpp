#include "check_report.hpp"

#include <algorithm>
#include <map>
#include <ostream>
#include <span>

#include "catalogue/check/findings_json.hpp"
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

constexpr std::size_t listedOfEachCode = 20;

void printGroup(FindingCode code, const Group& whole, bool listsAll, std::ostream& out) {
  const std::size_t listed = listsAll ? whole.size() : std::min(whole.size(), listedOfEachCode);
  const std::span group(whole.data(), listed);
  out << nameOf(severityOf(code)) << " " << identifierOf(code) << ": " << titleOf(code) << "\n";
  std::size_t widest = 0;
  for (const Finding* finding : group) {
    widest = std::max(widest, countColumns(toVisible(finding->place.text)));
  }
  for (const Finding* finding : group) {
    out << "  " << padTo(widest, toVisible(finding->place.text)) << (widest > 0 ? "  " : "")
        << toVisible(finding->message) << "\n";
  }
  if (listed == whole.size()) return;
  out << "  and " << whole.size() - listed << " more; --list-all lists them\n";
}

}  // namespace

void printText(const CheckReport& report, std::ostream& out) {
  std::map<FindingCode, Group> groups;
  for (const Finding& finding : report.findings) groups[finding.code].push_back(&finding);
  for (const Severity severity : gravestFirst) {
    for (const auto& [code, group] : groups) {
      if (severityOf(code) == severity && severity >= report.least) {
        printGroup(code, group, report.listsAll, out);
      }
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
  writeFindingsJson(report.catalogue, report.findings, report.least, out);
}

}  // namespace evopath
