// Writes the manual page and the shell completions of evopath into a folder.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "../program.hpp"
#include "writers.hpp"

namespace {

using namespace evopath::manual;

void writeFile(const std::filesystem::path& file, const std::function<void(std::ostream&)>& write) {
  std::ofstream out(file);
  write(out);
  if (!out.flush()) throw std::runtime_error(file.string() + ": cannot be written");
}

void writeAll(const Command& program, const std::filesystem::path& folder) {
  writeFile(folder / "evopath.1",
            [&](std::ostream& out) { writeManualPage(program, EVOPATH_VERSION, out); });
  writeFile(folder / "evopath.bash", [&](std::ostream& out) { writeBashCompletion(program, out); });
  writeFile(folder / "evopath.fish", [&](std::ostream& out) { writeFishCompletion(program, out); });
  writeFile(folder / "_evopath", [&](std::ostream& out) { writeZshCompletion(program, out); });
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 2) throw std::invalid_argument("usage: evopath_manual FOLDER");
    CLI::App program("", "evopath");
    evopath::Action action;
    evopath::addCommands(program, action);
    writeAll(describe(program), argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "evopath_manual: " << error.what() << "\n";
    return 1;
  }
}
