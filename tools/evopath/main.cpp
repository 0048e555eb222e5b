#include <csignal>
#include <exception>
#include <iostream>
#include <new>
#include <sstream>

#include "catalogue/text/display_text.hpp"
#include "interruption.hpp"
#include "pathfinder/search_limits.hpp"
#include "program.hpp"
#include "text_output.hpp"

namespace {

/// Errors name what catalogues hold, which must not disturb a terminal.
void printError(const std::exception& error) {
  std::istringstream lines(error.what());
  const char* beginning = "evopath: ";
  for (std::string line; std::getline(lines, line); beginning = "") {
    std::cerr << beginning << tarn::evolution::catalogue::toVisible(line) << "\n";
  }
}

/// Does what the command line says; help texts and what is wrong with it are printed as CLI11 words
/// them.
evopath::ExitStatus run(int argc, char** argv) {
  CLI::App program("", "evopath");
  evopath::Action action;
  evopath::addCommands(program, action);
  try {
    program.parse(argc, argv);
    if (!action) throw CLI::CallForHelp();
    return action();
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    const bool isHelp = program.exit(error, help, std::cerr) == 0;
    if (isHelp) evopath::writeToStandardOutput(help.str());
    return isHelp ? evopath::ExitStatus::Found : evopath::ExitStatus::BadInput;
  }
}

}  // namespace

int main(int argc, char** argv) {
  evopath::ExitStatus status = evopath::ExitStatus::BadInput;
  try {
    status = run(argc, argv);
  } catch (const evopath::Interrupted& error) {
    printError(error);
    return std::raise(error.signal());
  } catch (const tarn::evolution::pathfinder::SearchStopped& error) {
    printError(error);
    if (const int signal = evopath::SignalCatcher::caught()) return std::raise(signal);
    status = evopath::ExitStatus::Open;
  } catch (const std::bad_alloc&) {
    std::cerr << "evopath: out of memory\n";
  } catch (const std::exception& error) {
    printError(error);
  }
  return static_cast<int>(status);
}
