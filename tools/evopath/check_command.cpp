#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>

#include "catalogue/check/check.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "check_report.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "output_option.hpp"
#include "selection_argument.hpp"

namespace evopath {

using tarn::evolution::catalogue::Finding;
using tarn::evolution::catalogue::FindingCode;
using tarn::evolution::catalogue::Severity;
using tarn::evolution::catalogue::severityOf;
using tarn::evolution::catalogue::written;

namespace {

const std::map<std::string, Severity> severities{
    {"error", Severity::Error}, {"warning", Severity::Warning}, {"note", Severity::Note}};

struct CheckOptions {
  std::filesystem::path catalogue;
  std::string least = "note";
  std::vector<std::string> codes;
  std::vector<std::string> names;
  bool listsAll = false;
  bool json = false;
  OutputOption output;
};

std::vector<std::string> identifiers() {
  std::vector<std::string> result;
  for (const FindingCode code : tarn::evolution::catalogue::allFindingCodes()) {
    result.push_back(identifierOf(code));
  }
  return result;
}

ExitStatus worstStatus(const std::vector<Finding>& findings) {
  Severity worst = Severity::Note;
  for (const Finding& finding : findings) worst = std::max(worst, severityOf(finding.code));
  if (worst == Severity::Error) return ExitStatus::BadInput;
  return worst == Severity::Warning ? ExitStatus::Doubtful : ExitStatus::Sound;
}

/// Whether the finding is of a code and a metamodel that were asked for. What keeps the catalogue
/// from being read is of all metamodels.
bool isAskedFor(const Finding& finding, const std::vector<std::string>& codes,
                const std::vector<std::u16string>& names) {
  const auto isAmong = [](const auto& value, const auto& list) {
    return std::find(list.begin(), list.end(), value) != list.end();
  };
  if (!codes.empty() && !isAmong(identifierOf(finding.code), codes)) return false;
  if (names.empty() || finding.code == FindingCode::NotJson) return true;
  return std::any_of(finding.names.begin(), finding.names.end(),
                     [&](const std::u16string& name) { return isAmong(name, names); });
}

CheckReport report(const CheckOptions& options) {
  std::vector<std::u16string> names;
  for (const std::string& name : options.names) {
    names.push_back(tarn::evolution::catalogue::parseName(name));
  }
  std::vector<Finding> findings = check(tarn::evolution::catalogue::readDraft(options.catalogue));
  std::erase_if(findings,
                [&](const Finding& finding) { return !isAskedFor(finding, options.codes, names); });
  return {options.catalogue.string(), std::move(findings), severities.at(options.least),
          options.listsAll};
}

ExitStatus runCheck(const CheckOptions& options) {
  const CheckReport report = evopath::report(options);
  options.output.write(written([&](std::ostream& text) {
    if (options.json) {
      printJson(report, text);
    } else {
      printText(report, text);
    }
  }));
  return worstStatus(report.findings);
}

}  // namespace

void addCheckCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* check = program.add_subcommand("check", "Find all that is wrong with a catalogue");
  addCatalogueArgument(*check, options->catalogue);
  check
      ->add_option("--severity", options->least,
                   "Only count, without listing, what is less severe than this")
      ->type_name("SEVERITY")
      ->check(CLI::IsMember(&severities))
      ->capture_default_str();
  check
      ->add_option("--code", options->codes,
                   "Only look at findings of this code, such as duplicate-hop; may be given again")
      ->type_name("CODE")
      ->allow_extra_args(false)
      ->check(CLI::IsMember(identifiers()));
  check
      ->add_option("--name", options->names,
                   "Only look at findings about this metamodel; may be given again")
      ->type_name(nameTypeName)
      ->allow_extra_args(false);
  check->add_flag("--list-all", options->listsAll,
                  "List all findings as text, not only 20 of each code");
  check->add_flag("--json", options->json, "Print the findings as JSON");
  options->output.addTo(*check);
  check->footer(
      "Counts and exit status are those of the findings looked at.\n"
      "Exit status: 0 nothing worse than notes, 1 warnings, 2 errors, for which other commands\n"
      "refuse the catalogue, or bad usage.\n"
      "Example: evopath check data/operators.json --severity warning");
  check->callback([options, &action] { action = [options] { return runCheck(*options); }; });
}

}  // namespace evopath
