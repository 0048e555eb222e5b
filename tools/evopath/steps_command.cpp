#include <map>
#include <memory>
#include <sstream>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "output_option.hpp"
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
  std::uint64_t limit = 10000;
  bool json = false;
  OutputOption output;
};

std::vector<catalogue::StepListing> list(const StepsOptions& options) {
  const auto repository = catalogue::openCatalogue(options.catalogue);
  try {
    return catalogue::listSteps(*repository, parseSelection("--at", options.at),
                                directions.at(options.direction), options.limit);
  } catch (const catalogue::TooManyCombinations& error) {
    throw std::runtime_error(std::string(error.what()) +
                             "; ask for fewer metamodels, one direction or a higher --limit");
  }
}

ExitStatus runSteps(const StepsOptions& options) {
  const auto listings = list(options);
  std::ostringstream text;
  if (options.json) {
    catalogue::writeStepsJson(listings, text);
  } else {
    catalogue::writeStepsText(listings, options.output.colouring(), text);
  }
  options.output.write(text.str());
  return listings.empty() ? ExitStatus::NoPath : ExitStatus::Found;
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
  steps
      ->add_option("--limit", options->limit,
                   "How many combinations of hops to try at most; each metamodel that can move "
                   "doubles their number or more")
      ->type_name("NUMBER")
      ->capture_default_str();
  steps->add_flag("--json", options->json, "Print the answer as JSON");
  options->output.addTo(*steps);
  steps->footer(
      "Exit status: 0 listed, 1 the versions cannot stand together, 2 bad usage or input, also "
      "more combinations than the limit.\n"
      "Example: evopath steps data/operators.json --at kuadrant-operator=0.6.1 --direction "
      "forward");
  steps->callback([options, &action] { action = [options] { return runSteps(*options); }; });
}

}  // namespace evopath
