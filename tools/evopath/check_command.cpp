#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>

#include "catalogue/check/check.hpp"
#include "catalogue/check/open_draft.hpp"
#include "check_report.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "output_option.hpp"

namespace evopath {

using tarn::evolution::catalogue::Finding;
using tarn::evolution::catalogue::Severity;
using tarn::evolution::catalogue::severityOf;

namespace {

const std::map<std::string, Severity> severities{
    {"error", Severity::Error}, {"warning", Severity::Warning}, {"note", Severity::Note}};

struct CheckOptions {
  std::filesystem::path catalogue;
  std::string least = "note";
  bool json = false;
  OutputOption output;
};

ExitStatus worstStatus(const std::vector<Finding>& findings) {
  Severity worst = Severity::Note;
  for (const Finding& finding : findings) worst = std::max(worst, severityOf(finding.code));
  if (worst == Severity::Error) return ExitStatus::BadInput;
  return worst == Severity::Warning ? ExitStatus::Doubtful : ExitStatus::Sound;
}

ExitStatus runCheck(const CheckOptions& options) {
  const CheckReport report{options.catalogue.string(),
                           check(tarn::evolution::catalogue::readDraft(options.catalogue)),
                           severities.at(options.least)};
  std::ostringstream text;
  if (options.json) {
    printJson(report, text);
  } else {
    printText(report, text);
  }
  options.output.write(text.str());
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
  check->add_flag("--json", options->json, "Print the findings as JSON");
  options->output.addTo(*check);
  check->footer(
      "Exit status: 0 nothing worse than notes, 1 warnings, 2 errors, for which other commands\n"
      "refuse the catalogue, or bad usage.\n"
      "Example: evopath check data/operators.json --severity warning");
  check->callback([options, &action] { action = [options] { return runCheck(*options); }; });
}

}  // namespace evopath
