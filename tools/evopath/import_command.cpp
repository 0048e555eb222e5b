#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalogue/import/import.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "dry_run_option.hpp"
#include "file_arguments.hpp"
#include "import_report.hpp"
#include "progress_bar.hpp"
#include "standard_streams.hpp"
#include "store_report.hpp"
#include "text_output.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

const std::map<std::string, ImportFormat> formats{
    {"graph", ImportFormat::UpdateGraph},   {"npm", ImportFormat::Npm},
    {"operators", ImportFormat::Operators}, {"postgresql", ImportFormat::Postgresql},
    {"stops", ImportFormat::Stops},         {"table", ImportFormat::Table},
};

const std::map<std::string, OfferedHops> offers{
    {"majors", OfferedHops::Majors},
    {"minors", OfferedHops::Minors},
    {"all", OfferedHops::All},
};

template <class Value>
std::vector<std::string> wordsOf(const std::map<std::string, Value>& choices) {
  std::vector<std::string> words;
  words.reserve(choices.size());
  for (const auto& [word, value] : choices) words.push_back(word);
  return words;
}

struct ImportArguments {
  std::vector<std::string> files;
  std::string format;
  std::string offeredHops = "majors";
  bool listsAll = false;
  ImportOptions options;
  DryRunOption dryRun;
};

ExitStatus importJson(const ImportArguments& arguments) {
  if (arguments.files.size() != 2) {
    throw std::invalid_argument("several files are joined only with --from");
  }
  const auto source = inputFile(arguments.files[0]);
  const auto counts = withProgressBar("Importing", [&](const StoreProgress& progress) {
    return importCatalogue(source, arguments.files[1], progress, arguments.dryRun.mode());
  });
  writeToStandardOutput(arguments.dryRun.tell("Imported", describeCounts(counts)));
  return ExitStatus::Found;
}

ExitStatus importForeign(const ImportArguments& arguments) {
  ImportOptions options = arguments.options;
  options.format = formats.at(arguments.format);
  options.offeredHops = offers.at(arguments.offeredHops);
  for (std::size_t i = 0; i + 1 < arguments.files.size(); ++i) {
    options.sources.push_back(inputFile(arguments.files[i]));
  }
  const auto report = withProgressBar("Importing", [&](const StoreProgress& progress) {
    return importForeignCatalogue(options, arguments.files.back(), progress,
                                  arguments.dryRun.mode());
  });
  writeToStandardOutput(written([&](std::ostream& text) {
    printImportReport(report, arguments.listsAll, arguments.dryRun, text);
  }));
  return ExitStatus::Found;
}

void addOptions(CLI::App& command, ImportArguments& arguments) {
  ImportOptions& options = arguments.options;
  arguments.dryRun.addTo(command);
  CLI::Option* from = command
                          .add_option("--from", arguments.format,
                                      "The format of the sources, if it is not our own JSON")
                          ->check(CLI::IsMember(wordsOf(formats)))
                          ->type_name("FORMAT");
  command
      .add_option("--prefix", options.prefixes,
                  "What goes before all names of the sources; once for all of them, or once for "
                  "each")
      ->type_name("TEXT")
      ->allow_extra_args(false)
      ->needs(from);
  command.add_flag("--lenient", options.isLenient, "Leave out what is at fault, and list it")
      ->needs(from);
  command.add_flag("--list-all", arguments.listsAll, "List all that was left out, not only 20")
      ->needs(from);
  command
      .add_flag("--update", options.keepsOthers,
                "Keep what the catalogue holds of other names than the sources")
      ->needs(from);
  command
      .add_option("--hops", arguments.offeredHops,
                  "Of npm packages and required stops: hops to the newest version of each major or "
                  "minor version, or to all versions")
      ->check(CLI::IsMember(wordsOf(offers)))
      ->type_name("WHICH")
      ->capture_default_str()
      ->needs(from);
  command
      .add_flag("--engines", options.withEngines,
                "Of npm packages: what they need of engines is a dependency, too")
      ->needs(from);
  command
      .add_option("--servers", options.servers,
                  "Of PostgreSQL extensions: a table of which versions of them run on which server")
      ->type_name(fileTypeName)
      ->needs(from);
}

ExitStatus runImport(const ImportArguments& arguments) {
  if (arguments.files.back() == standardStream) {
    throw std::invalid_argument("a catalogue is made in a file, not on standard output");
  }
  return arguments.format.empty() ? importJson(arguments) : importForeign(arguments);
}

}  // namespace

void addImportCommand(CLI::App& program, Action& action) {
  const auto arguments = std::make_shared<ImportArguments>();
  CLI::App* command =
      program.add_subcommand("import", "Make a catalogue of what other programs keep, or a store");
  command
      ->add_option(
          "file", arguments->files,
          "The sources, files or folders or - for standard input, and last the catalogue to "
          "make")
      ->type_name(fileTypeName)
      ->required()
      ->expected(2, -1);
  addOptions(*command, *arguments);
  command->footer(
      "Without --from, the one source is a JSON catalogue, and what is made a store. With it, a\n"
      "catalogue whose name ends in .json is made as JSON, any other one as a store.\n"
      "A catalogue that stands there already is replaced once the new one is complete; who has it\n"
      "open keeps the old one. Any other file is left alone. What is unsound is refused, unless\n"
      "--lenient leaves it out.\n"
      "Exit status: 0 the catalogue was made, 2 bad usage or input.\n"
      "Example: evopath import data/operators.json operators.store");
  command->callback(
      [arguments, &action] { action = [arguments] { return runImport(*arguments); }; });
}

}  // namespace evopath
