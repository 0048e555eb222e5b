#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/version_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "known_versions.hpp"
#include "progress_bar.hpp"
#include "selection_argument.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct RemoveOptions {
  std::filesystem::path store;
  std::vector<std::string> choices;
};

RemovalChoice parseChoice(const std::string& argument) {
  const std::size_t separator = argument.find('=');
  try {
    RemovalChoice choice{parseName(argument.substr(0, separator)), std::nullopt};
    if (separator != std::string::npos) {
      choice.version = parseVersion(argument.substr(separator + 1));
    }
    return choice;
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(argument + ": " + error.what());
  }
}

/// That the store holds what is to be removed.
void expectHeld(const std::filesystem::path& store, const std::vector<RemovalChoice>& choices) {
  SqliteCatalogueRepository repository(store);
  for (const auto& [name, version] : choices) {
    if (version) {
      expectKnown(repository, Selection{{name, *version}});
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
  expectHeld(options.store, choices);
  const RemovalResult result = withProgressBar("Removing", [&](const StoreProgress& progress) {
    return removeFromStore(options.store, choices, progress);
  });
  if (result.obstacleCount > 0) {
    printObstacles(result, std::cerr);
    return ExitStatus::BadInput;
  }
  writeToStandardOutput("Removed " + describeCounts(result.removed) + ".\n");
  return ExitStatus::Found;
}

}  // namespace

void addRemoveCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<RemoveOptions>();
  CLI::App* command = program.add_subcommand("remove", "Remove metamodels from a store");
  addStoreArgument(*command, options->store);
  command
      ->add_option("choices", options->choices,
                   "What to remove: one version of a metamodel, or all of them")
      ->type_name(nameOrVersionTypeName)
      ->required();
  command->footer(
      "The hops from and to what is removed go with it. Nothing is removed when a version that\n"
      "stays depends on what would go and on nothing that stays in its place: name the dependents\n"
      "as well. The store's question stays as it is.\n"
      "Exit status: 0 all was removed, 2 nothing was: others depend on it, or bad usage or input.\n"
      "Example: evopath remove operators.store limitador-operator=0.3.0");
  command->callback([options, &action] { action = [options] { return runRemove(*options); }; });
}

}  // namespace evopath
