#include <filesystem>
#include <memory>

#include "catalogue/store/store_editing.hpp"
#include "command.hpp"
#include "dry_run_option.hpp"
#include "file_arguments.hpp"
#include "progress_bar.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct AddOptions {
  std::filesystem::path store;
  std::filesystem::path addition;
  DryRunOption dryRun;
};

ExitStatus runAdd(const AddOptions& options) {
  const auto counts = withProgressBar("Adding", [&](const StoreProgress& progress) {
    return addToStore(options.store, options.addition, progress, options.dryRun.mode());
  });
  writeToStandardOutput(options.dryRun.tell("Added", describeCounts(counts)));
  return ExitStatus::Found;
}

}  // namespace

void addAddCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<AddOptions>();
  CLI::App* command = program.add_subcommand("add", "Add metamodels and hops to a store");
  addStoreArgument(*command, options->store);
  addInputArgument(*command, "addition", options->addition, "What to add, a JSON file");
  options->dryRun.addTo(*command);
  command->footer(
      "The JSON file has the form of a catalogue, and may lean on what the store holds. What it\n"
      "adds comes after that. All of it is added, or nothing when it would leave the store "
      "unsound:\n"
      "a version that stands twice, a dependency on an unknown metamodel, a hop from or to an\n"
      "unknown version, dependencies that form a cycle, a hop that is there already, or a second\n"
      "question.\n"
      "Exit status: 0 all was added, 2 bad usage or input.\n"
      "Example: evopath add operators.store data/new-releases.json");
  command->callback([options, &action] { action = [options] { return runAdd(*options); }; });
}

}  // namespace evopath
