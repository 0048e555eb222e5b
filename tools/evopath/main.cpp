#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "exit_status.hpp"
#include "path_command.hpp"

namespace {

/// Adds `evopath path` to the program; `options` receives what was given.
CLI::App* addPathCommand(CLI::App& program, evopath::PathOptions& options) {
  CLI::App* path =
      program.add_subcommand("path", "Find the least-weight path between two selections");
  path->add_option("catalogue", options.catalogue, "The catalogue, a JSON file")->required();
  auto* from = path->add_option("--from", options.from, "The versions to start from")
                   ->type_name("NAME=VERSION[,...]")
                   ->delimiter(',');
  auto* to = path->add_option("--to", options.to, "The versions to reach")
                 ->type_name("NAME=VERSION[,...]")
                 ->delimiter(',');
  auto* question =
      path->add_flag("--question", options.question, "Ask the catalogue's own question");
  path->add_flag("--json", options.json, "Print the answer as JSON");
  path->add_flag("--trace", options.trace, "Show the path finder's reasoning on standard error");
  from->needs(to)->excludes(question);
  to->needs(from)->excludes(question);
  path->callback([&options] {
    if (!options.question && options.from.empty()) {
      throw CLI::RequiredError("Either --question or --from and --to");
    }
  });
  path->footer(
      "Exit status: 0 a path was found, 1 there is none, 2 bad usage or input.\n"
      "Example: evopath path data/operators.json --from cert-manager=1.12.1 --to "
      "cert-manager=1.14.2");
  return path;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program("Finds paths between versions of metamodels that depend on one another",
                   "evopath");
  program.require_subcommand(0, 1);  // with none, what stands in its place is named
  evopath::PathOptions pathOptions;
  addPathCommand(program, pathOptions);
  try {
    program.parse(argc, argv);
    if (program.get_subcommands().empty()) throw CLI::RequiredError("A command");
    return evopath::runPath(pathOptions);
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? 0 : evopath::badInput;
  } catch (const std::exception& error) {
    std::cerr << "evopath: " << error.what() << "\n";
    return evopath::badInput;
  }
}
