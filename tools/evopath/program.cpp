#include "program.hpp"

namespace evopath {

void addCommands(CLI::App& program, Action& action) {
  program.description("Finds paths between versions of metamodels that depend on one another");
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
       {addPathCommand, addExplainCommand, addStepsCommand, addShowCommand, addGraphCommand,
        addCheckCommand, addImportCommand, addExportCommand, addAddCommand, addRemoveCommand}) {
    addCommand(program, action);
  }
}

}  // namespace evopath
