#include <exception>
#include <iostream>

#include "command.hpp"

int main(int argc, char** argv) {
  CLI::App program("Finds paths between versions of metamodels that depend on one another",
                   "evopath");
  program.require_subcommand(0, 1);  // with none, what stands in its place is named
  evopath::Action action;
  for (const evopath::AddCommand addCommand :
       {evopath::addPathCommand, evopath::addExplainCommand, evopath::addStepsCommand,
        evopath::addShowCommand, evopath::addGraphCommand, evopath::addCheckCommand,
        evopath::addImportCommand, evopath::addExportCommand, evopath::addAddCommand,
        evopath::addRemoveCommand}) {
    addCommand(program, action);
  }
  try {
    program.parse(argc, argv);
    if (!action) throw CLI::RequiredError("A command");
    return action();
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? 0 : evopath::badInput;
  } catch (const std::exception& error) {
    std::cerr << "evopath: " << error.what() << "\n";
    return evopath::badInput;
  }
}
