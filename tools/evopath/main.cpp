#include <csignal>
#include <exception>
#include <iostream>
#include <sstream>

#include "catalogue/text/display_text.hpp"
#include "program.hpp"
#include "progress_bar.hpp"

namespace {

/// Errors name what catalogues hold, which must not disturb a terminal.
void printError(const std::exception& error) {
  std::istringstream lines(error.what());
  const char* beginning = "evopath: ";
  for (std::string line; std::getline(lines, line); beginning = "") {
    std::cerr << beginning << tarn::evolution::catalogue::toVisible(line) << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int badInput = static_cast<int>(evopath::ExitStatus::BadInput);
  CLI::App program("", "evopath");
  evopath::Action action;
  evopath::addCommands(program, action);
  try {
    program.parse(argc, argv);
    if (!action) throw CLI::RequiredError("A command");
    return static_cast<int>(action());
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? 0 : badInput;
  } catch (const evopath::Interrupted& error) {
    printError(error);
    return std::raise(SIGINT);  // so that who started the program sees how it ended
  } catch (const std::exception& error) {
    printError(error);
    return badInput;
  }
}
