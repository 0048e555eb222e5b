#include "catalogue/check/findings_json.hpp"

#include <algorithm>
#include <ostream>

#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::uint64_t countOf(const std::vector<Finding>& findings, Severity severity) {
  return static_cast<std::uint64_t>(
      std::count_if(findings.begin(), findings.end(),
                    [&](const Finding& finding) { return severityOf(finding.code) == severity; }));
}

void writeFinding(JsonPrinter& printer, const Finding& finding) {
  printer.object([&] {
    printer.field("code", identifierOf(finding.code));
    printer.field("severity", nameOf(severityOf(finding.code)));
    printer.key("place");
    printer.anyText(finding.place.text);
    printer.key("message");
    printer.anyText(finding.message);
    printer.arrayField("related", [&] {
      for (const Place& place : finding.related) printer.anyText(place.text);
    });
  });
}

}  // namespace

void writeFindingsJson(const std::string& catalogue, const std::vector<Finding>& findings,
                       Severity least, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    printer.key("catalogue");
    printer.anyText(catalogue);
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
      printer.field(nameOf(severity) + "s", countOf(findings, severity));
    }
    printer.arrayField("findings", [&] {
      for (const Finding& finding : findings) {
        if (severityOf(finding.code) >= least) writeFinding(printer, finding);
      }
    });
  });
}

}  // namespace tarn::evolution::catalogue
