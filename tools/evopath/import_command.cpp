#include <filesystem>
#include <memory>

#include "catalogue/store/store_transfer.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "progress_bar.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct ImportOptions {
  std::filesystem::path catalogue;
  std::filesystem::path store;
};

ExitStatus runImport(const ImportOptions& options) {
  const auto counts = withProgressBar("Importing", [&](const StoreProgress& progress) {
    return importCatalogue(options.catalogue, options.store, progress);
  });
  writeToStandardOutput("Imported " + describeCounts(counts) + ".\n");
  return ExitStatus::Found;
}

}  // namespace

void addImportCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ImportOptions>();
  CLI::App* command = program.add_subcommand("import", "Make a store of a JSON catalogue");
  addFileArgument(*command, "catalogue", options->catalogue, "The catalogue, a JSON file");
  addFileArgument(*command, "store", options->store, "The store to make, a SQLite file");
  command->footer(
      "A store that stands there already is replaced once the new one is complete; who has it "
      "open\n"
      "keeps the old one. Any other file is left alone. A catalogue that is unsound is refused.\n"
      "Exit status: 0 the store was made, 2 bad usage or input.\n"
      "Example: evopath import data/operators.json operators.store");
  command->callback([options, &action] { action = [options] { return runImport(*options); }; });
}

}  // namespace evopath
