#include <map>
#include <memory>

#include "catalogue/explanation/steps_out.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "known_versions.hpp"
#include "number_option.hpp"
#include "output_option.hpp"
#include "preference_option.hpp"
#include "selection_argument.hpp"

namespace evopath {

namespace catalogue = tarn::evolution::catalogue;
using tarn::evolution::pathfinder::VersionRepository;

namespace {

const std::map<std::string, VersionRepository::Direction> directions{
    {"forward", VersionRepository::Forward},
    {"backward", VersionRepository::Backward},
    {"any", VersionRepository::Unknown}};

struct StepsOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> at;
  std::string direction = "any";
  std::uint64_t limit = 1'000'000;
  std::uint64_t baselines = 1000;
  PreferenceOption preference;
  bool all = false;
  bool json = false;
  OutputOption output;

  catalogue::StepSearch search() const { return {directions.at(direction), limit}; }
};

ExitStatus statusOf(const catalogue::StepsOut& steps) {
  return steps.isComplete ? ExitStatus::Found : ExitStatus::Open;
}

ExitStatus listMinimal(const StepsOptions& options, catalogue::BrowsableRepository& repository,
                       const catalogue::Selection& selection) {
  const auto steps = catalogue::findMinimalSteps(repository, selection, options.search());
  options.output.write(catalogue::written([&](std::ostream& text) {
    if (options.json) {
      catalogue::writeStepsOutJson(steps, text);
    } else {
      catalogue::writeStepsOutText(steps, options.output.colouring(), text);
    }
  }));
  return steps.listings.empty() ? ExitStatus::NoPath : statusOf(steps);
}

ExitStatus streamAll(const StepsOptions& options, catalogue::BrowsableRepository& repository,
                     const catalogue::Selection& selection) {
  OutputOption::Stream out(options.output);
  const auto form = options.json ? catalogue::StepForm::JsonLines : catalogue::StepForm::Text;
  const auto steps = catalogue::streamSteps(repository, selection, options.search(), form,
                                            options.output.colouring(),
                                            [&](const std::string& text) { out.write(text); });
  out.finish();
  return steps.listings.empty() ? ExitStatus::NoPath : statusOf(steps);
}

ExitStatus runSteps(const StepsOptions& options) {
  const auto repository = catalogue::openCatalogue(options.catalogue);
  auto selection = parseSelection("--at", options.at);
  expectKnown(*repository, selection);
  selection = options.preference.apply(*repository, selection);
  expectFewBaselines(*repository, selection, options.baselines);
  return options.all ? streamAll(options, *repository, selection)
                     : listMinimal(options, *repository, selection);
}

}  // namespace

void addStepsCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<StepsOptions>();
  CLI::App* steps = program.add_subcommand("steps", "List the steps out of a selection");
  addCatalogueArgument(*steps, options->catalogue);
  steps->add_option("--at", options->at, "The versions to start from")
      ->type_name(selectionTypeName)
      ->delimiter(',')
      ->required();
  steps->add_option("--direction", options->direction, "Which way the hops may go")
      ->type_name("DIRECTION")
      ->check(CLI::IsMember(&directions))
      ->capture_default_str();
  addNumberOption(*steps, "--limit", options->limit,
                  "How many combinations of hops to try at most, for each baseline with --all");
  addNumberOption(*steps, "--baselines", options->baselines,
                  "How many baselines the versions may leave open at most");
  options->preference.addTo(*steps);
  steps->add_flag("--all", options->all,
                  "List all steps, as they are found, not only those of which no part is a step");
  steps->add_flag("--json", options->json,
                  "Print the answer as JSON; with --all a step on each line");
  options->output.addTo(*steps);
  steps->footer(
      "A hop to a version that cannot be linked is left out and named.\n"
      "Exit status: 0 listed, 1 the versions cannot stand together, 2 bad usage or input, 3 "
      "listed\n"
      "are those that were found before the limit was reached.\n"
      "Example: evopath steps data/operators.json --at kuadrant-operator=0.6.1 --direction "
      "forward");
  steps->callback([options, &action] { action = [options] { return runSteps(*options); }; });
}

}  // namespace evopath
