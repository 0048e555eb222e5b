#include <exception>
#include <iostream>

#include "program.hpp"

int main(int argc, char** argv) {
  CLI::App program("", "evopath");
  evopath::Action action;
  evopath::addCommands(program, action);
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
