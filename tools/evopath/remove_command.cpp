#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/version_text.hpp"
#include "command.hpp"
#include "dry_run_option.hpp"
#include "file_arguments.hpp"
#include "known_versions.hpp"
#include "progress_bar.hpp"
#include "selection_argument.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

constexpr const char* hopTypeName = "NAME=FROM..TO";

struct RemoveOptions {
  std::filesystem::path store;
  std::vector<std::string> choices;
  std::vector<std::string> hops;
  DryRunOption dryRun;
};

RemovalChoice parseChoice(const std::string& argument) {
  const std::size_t separator = argument.find('=');
  try {
    RemovalChoice choice{parseName(argument.substr(0, separator)), std::nullopt, std::nullopt};
    if (separator != std::string::npos) {
      choice.version = parseVersion(argument.substr(separator + 1));
    }
    return choice;
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(argument + ": " + error.what());
  }
}

RemovalChoice parseHop(const std::string& argument) {
  const std::size_t separator = argument.find('=');
  const std::size_t dots = argument.find("..", separator == std::string::npos ? 0 : separator);
  try {
    if (separator == std::string::npos || dots == std::string::npos) {
      throw std::invalid_argument(std::string("must be ") + hopTypeName);
    }
    return {parseName(argument.substr(0, separator)),
            parseVersion(argument.substr(separator + 1, dots - separator - 1)),
            parseVersion(argument.substr(dots + 2))};
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument("--hop " + argument + ": " + error.what());
  }
}

/// That the store holds what is to be removed.
void expectHeld(const std::filesystem::path& store, const std::vector<RemovalChoice>& choices) {
  SqliteCatalogueRepository repository(store);
  for (const auto& [name, version, to] : choices) {
    if (version) {
      expectKnown(repository, Selection{{name, *version}});
      if (to) expectKnown(repository, Selection{{name, *to}});
    } else {
      expectKnown(repository, std::vector{name});
    }
  }
}

void printObstacles(const RemovalResult& result, std::ostream& out) {
  out << "evopath: nothing was removed, for others depend on it:\n";
  for (const RemovalObstacle& obstacle : result.obstacles) {
    out << "  " << toVisible(describe(obstacle)) << "\n";
  }
  if (result.obstacleCount > result.obstacles.size()) {
    out << "  and " << result.obstacleCount - result.obstacles.size() << " more\n";
  }
}

ExitStatus runRemove(const RemoveOptions& options) {
  std::vector<RemovalChoice> choices;
  for (const std::string& argument : options.choices) choices.push_back(parseChoice(argument));
  for (const std::string& argument : options.hops) choices.push_back(parseHop(argument));
  if (choices.empty()) throw CLI::RequiredError("choices or --hop");
  expectHeld(options.store, choices);
  const RemovalResult result = withProgressBar("Removing", [&](const StoreProgress& progress) {
    return removeFromStore(options.store, choices, progress, options.dryRun.mode());
  });
  if (result.obstacleCount > 0) {
    printObstacles(result, std::cerr);
    return ExitStatus::BadInput;
  }
  writeToStandardOutput(options.dryRun.tell("Removed", describeCounts(result.removed)));
  return ExitStatus::Found;
}

}  // namespace

void addRemoveCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<RemoveOptions>();
  CLI::App* command = program.add_subcommand("remove", "Remove metamodels and hops from a store");
  addStoreArgument(*command, options->store);
  command
      ->add_option("choices", options->choices,
                   "What to remove: one version of a metamodel, or all of them")
      ->type_name(nameOrVersionTypeName);
  command->add_option("--hop", options->hops, "Remove a hop; may be given several times")
      ->type_name(hopTypeName)
      ->allow_extra_args(false);
  options->dryRun.addTo(*command);
  command->footer(
      "The hops from and to what is removed go with it. Nothing is removed when a version that\n"
      "stays depends on what would go and on nothing that stays in its place: name the dependents\n"
      "as well. The store's question stays as it is.\n"
      "Exit status: 0 all was removed, 2 nothing was: others depend on it, or bad usage or input.\n"
      "Example: evopath remove operators.store limitador-operator=0.3.0");
  command->callback([options, &action] { action = [options] { return runRemove(*options); }; });
}

}  // namespace evopath
