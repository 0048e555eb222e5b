#include "program.hpp"

#include <string>

#include "pathfinder/version.hpp"

namespace evopath {

namespace {

std::string versionText() {
  const auto [major, minor, patch] = tarn::evolution::pathfinder::libraryVersion();
  return "evopath " + std::to_string(major) + "." + std::to_string(minor) + "." +
         std::to_string(patch);
}

}  // namespace

void addCommands(CLI::App& program, Action& action) {
  program.description("Finds paths between versions of metamodels that depend on one another");
  program.set_version_flag("--version", versionText, "Print the version and exit");
  program.require_subcommand(0, 1);  // with none, what stands in its place is named
  program.footer(
      "\"evopath COMMAND --help\" tells all about a command. Lists are coloured on a terminal, "
      "unless\n"
      "the environment variable NO_COLOR is set.\n"
      "Ctrl-C ends a command with exit status 130, and a search with what is known; a file or "
      "store\n"
      "that it was to change is then as it was.\n"
      "Example: evopath path data/operators.json --question");
  for (const AddCommand addCommand :
       {addPathCommand, addBatchCommand, addExplainCommand, addStepsCommand, addShowCommand,
        addGraphCommand, addExploreCommand, addDiffCommand, addCheckCommand, addImportCommand,
        addExportCommand, addAddCommand, addChangeCommand, addRemoveCommand, addWordsCommand}) {
    addCommand(program, action);
  }
}

}  // namespace evopath
