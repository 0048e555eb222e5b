#include <memory>
#include <optional>
#include <utility>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/dependants.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "known_versions.hpp"
#include "number_option.hpp"
#include "output_option.hpp"
#include "preference_option.hpp"
#include "selection_argument.hpp"

namespace evopath {

namespace catalogue = tarn::evolution::catalogue;
using tarn::evolution::pathfinder::VersionId;

namespace {

struct ShowOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> names;
  std::vector<std::string> at;
  std::uint64_t baselines = 1000;
  PreferenceOption preference;
  bool neededBy = false;
  bool json = false;
  OutputOption output;
};

/// NAME or NAME=VERSION, of what the repository knows.
std::pair<std::u16string, std::optional<VersionId>> readKnown(
    catalogue::BrowsableRepository& repository, const std::string& argument) {
  if (argument.find('=') == std::string::npos) {
    const std::u16string name = catalogue::parseName(argument);
    expectKnown(repository, std::vector{name});
    return {name, std::nullopt};
  }
  const auto selection = parseSelection("show", {argument});
  expectKnown(repository, selection);
  return *selection.begin();
}

ExitStatus showBaselines(const ShowOptions& options, catalogue::BrowsableRepository& repository,
                         std::ostream& out) {
  auto selection = parseSelection("--at", options.at);
  expectKnown(repository, selection);
  const auto named = selection;
  selection = options.preference.apply(repository, selection);
  expectFewBaselines(repository, selection, options.baselines);
  const auto baselines = repository.combine(selection);
  if (options.json) {
    catalogue::writeBaselinesJson(baselines, out);
  } else {
    catalogue::writeBaselinesText(baselines, named, options.output.colouring(), out);
  }
  return baselines.empty() ? ExitStatus::NoPath : ExitStatus::Found;
}

void showSummary(const ShowOptions& options, catalogue::BrowsableRepository& repository,
                 std::ostream& out) {
  const auto all = catalogue::summariseAll(repository);
  if (options.json) {
    catalogue::writeSummaryJson(all, out);
  } else {
    catalogue::writeSummaryText(all, options.output.colouring(), out);
  }
}

void showDetails(const ShowOptions& options, catalogue::BrowsableRepository& repository,
                 std::ostream& out) {
  std::vector<catalogue::MetamodelDetails> details;
  details.reserve(options.names.size());
  for (const std::string& argument : options.names) {
    const auto [name, version] = readKnown(repository, argument);
    details.push_back(version ? catalogue::describeVersion(repository, name, *version)
                              : catalogue::describeMetamodel(repository, name));
  }
  if (options.json) {
    catalogue::writeDetailsJson(details, out);
  } else {
    catalogue::writeDetailsText(details, options.output.colouring(), out);
  }
}

void showDependants(const ShowOptions& options, catalogue::BrowsableRepository& repository,
                    std::ostream& out) {
  std::vector<catalogue::Dependants> all;
  for (const std::string& argument : options.names) {
    const auto [name, version] = readKnown(repository, argument);
    all.push_back(catalogue::findDependants(repository, name, version));
  }
  if (options.json) {
    catalogue::writeDependantsJson(all, out);
  } else {
    catalogue::writeDependantsText(all, options.output.colouring(), out);
  }
}

ExitStatus runShow(const ShowOptions& options) {
  const auto repository = catalogue::openCatalogue(options.catalogue);
  ExitStatus status = ExitStatus::Found;
  options.output.write(catalogue::written([&](std::ostream& text) {
    if (!options.at.empty()) {
      status = showBaselines(options, *repository, text);
    } else if (options.neededBy) {
      showDependants(options, *repository, text);
    } else if (options.names.empty()) {
      showSummary(options, *repository, text);
    } else {
      showDetails(options, *repository, text);
    }
  }));
  return status;
}

}  // namespace

void addShowCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ShowOptions>();
  CLI::App* show = program.add_subcommand("show", "Show what a catalogue holds");
  addCatalogueArgument(*show, options->catalogue);
  auto* names = show->add_option("names", options->names,
                                 "Metamodels to show with all versions, or single versions, which "
                                 "are linked as well; with none, every metamodel in one line")
                    ->type_name(nameOrVersionTypeName);
  show->add_option("--at", options->at, "Show the consistent baselines of these versions instead")
      ->type_name(selectionTypeName)
      ->delimiter(',')
      ->excludes(names);
  show->add_flag("--needed-by", options->neededBy,
                 "Show who depends on the metamodels or versions instead")
      ->needs(names);
  addNumberOption(*show, "--baselines", options->baselines,
                  "How many baselines --at may show at most");
  options->preference.addTo(*show);
  show->add_flag("--json", options->json, "Print the answer as JSON");
  options->output.addTo(*show);
  show->footer(
      "Exit status: 0 shown, 1 the versions of --at cannot stand together, 2 bad usage or input.\n"
      "Example: evopath show data/operators.json kuadrant-operator=0.11.1");
  show->callback([options, &action] { action = [options] { return runShow(*options); }; });
}

}  // namespace evopath
