#include <csignal>
#include <exception>
#include <iostream>

#include "program.hpp"
#include "progress_bar.hpp"

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
  } catch (const evopath::Interrupted& error) {
    std::cerr << "evopath: " << error.what() << "\n";
    return std::raise(SIGINT);  // so that who started the program sees how it ended
  } catch (const std::exception& error) {
    std::cerr << "evopath: " << error.what() << "\n";
    return evopath::badInput;
  }
}
