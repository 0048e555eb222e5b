#include <cerrno>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "catalogue/store/store_transfer.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "progress_bar.hpp"
#include "standard_streams.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct ExportOptions {
  std::filesystem::path store;
  std::filesystem::path catalogue;
};

void exportToStandardOutput(const ExportOptions& options) {
  try {
    withProgressBar("Exporting", [&](const StoreProgress& progress) {
      return exportCatalogue(options.store, std::cout, progress);
    });
  } catch (const std::ios_base::failure&) {
    throw std::runtime_error("standard output: cannot be written: " +
                             std::generic_category().message(errno));
  }
}

ExitStatus runExport(const ExportOptions& options) {
  if (isStandardOutput(options.catalogue)) {
    exportToStandardOutput(options);
    return ExitStatus::Found;
  }
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
  addFileArgument(*command, "catalogue", options->catalogue,
                  "The JSON file to write; - for standard output");
  command->footer(
      "A file that stands there already is replaced once the new one is complete, unless it is a\n"
      "SQLite database. Pipes and devices are written to as they are.\n"
      "Exit status: 0 the catalogue was written, 2 bad usage or input.\n"
      "Example: evopath export operators.store operators.json");
  command->callback([options, &action] { action = [options] { return runExport(*options); }; });
}

}  // namespace evopath
