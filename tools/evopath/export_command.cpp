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

struct ExportOptions {
  std::filesystem::path store;
  std::filesystem::path catalogue;
};

ExitStatus runExport(const ExportOptions& options) {
  const auto counts = withProgressBar("Exporting", [&](const StoreProgress& progress) {
    return exportCatalogue(options.store, options.catalogue, progress);
  });
  writeToStandardOutput("Exported " + describeCounts(counts) + ".\n");
  return ExitStatus::Found;
}

}  // namespace

void addExportCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* command = program.add_subcommand("export", "Write a store as a JSON catalogue");
  addStoreArgument(*command, options->store);
  addFileArgument(*command, "catalogue", options->catalogue, "The JSON file to write");
  command->footer(
      "A file that stands there already is replaced once the new one is complete, unless it is a\n"
      "SQLite database.\n"
      "Exit status: 0 the catalogue was written, 2 bad usage or input.\n"
      "Example: evopath export operators.store operators.json");
  command->callback([options, &action] { action = [options] { return runExport(*options); }; });
}

}  // namespace evopath
