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

struct ChangeOptions {
  std::filesystem::path store;
  std::filesystem::path change;
  DryRunOption dryRun;
};

ExitStatus runChange(const ChangeOptions& options) {
  const auto result = withProgressBar("Changing", [&](const StoreProgress& progress) {
    return changeStore(options.store, options.change, progress, options.dryRun.mode());
  });
  const auto& [metamodels, hops] = result.unchanged;
  const std::string alreadySo =
      metamodels + hops == 0 ? "" : "; already so were " + describeCounts(result.unchanged);
  writeToStandardOutput(options.dryRun.tell("Changed", describeCounts(result.changed) + alreadySo));
  return ExitStatus::Found;
}

}  // namespace

void addChangeCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ChangeOptions>();
  CLI::App* command = program.add_subcommand("change", "Change metamodels and hops of a store");
  addStoreArgument(*command, options->store);
  addInputArgument(*command, "change", options->change, "What they are to be, a JSON file");
  options->dryRun.addTo(*command);
  command->footer(
      "The JSON file has the form of a catalogue. Each version in it is put in the place of the "
      "one\n"
      "that the store holds, with its dependencies, semver and notes, each hop with whether it is\n"
      "expensive and its note, and a question in the place of the store's. All of it is changed, "
      "or\n"
      "nothing when the store does not hold a version or hop, or would become unsound.\n"
      "Exit status: 0 all was changed, 2 bad usage or input.\n"
      "Example: evopath change operators.store data/changed-releases.json --dry-run");
  command->callback([options, &action] { action = [options] { return runChange(*options); }; });
}

}  // namespace evopath
