#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "batch_options.hpp"
#include "batch_output.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/comparison/heads_to_heads.hpp"
#include "catalogue/explanation/batch.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/utf16.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "heads_report.hpp"
#include "interruption.hpp"
#include "known_versions.hpp"
#include "number_option.hpp"
#include "question_file.hpp"
#include "search_monitor.hpp"
#include "selection_argument.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::SearchLimits;

namespace {

struct BatchArguments {
  std::filesystem::path catalogue;
  std::filesystem::path questions;  // empty with --heads
  bool heads = false;
  bool together = false;
  std::vector<std::string> of;  // names, as they are given; all where there are none
  std::uint64_t part = 1;
  std::uint64_t parts = 1;
  BatchOptions options;
  std::filesystem::path output;
  bool resumes = false;
};

/// I/N, I from 1 to N.
void parsePart(const std::string& text, BatchArguments& arguments) {
  const std::size_t slash = text.find('/');
  if (slash != std::string::npos) {
    arguments.part = readNumber(text.substr(0, slash)).value_or(0);
    arguments.parts = readNumber(text.substr(slash + 1)).value_or(0);
    if (arguments.part >= 1 && arguments.part <= arguments.parts) return;
  }
  throw CLI::ValidationError("--part " + text, "must be I/N, I from 1 to N, such as 1/8");
}

/// What is asked, and the stream of questions.
struct Asked {
  std::unique_ptr<BrowsableRepository> repository;
  std::unique_ptr<std::istream> questions;
};

/// The names of --of, or else all.
std::set<std::u16string> chosenNames(const BatchArguments& arguments,
                                     CatalogueRepository& repository) {
  std::vector<std::u16string> names;
  for (const std::string& name : arguments.of) names.push_back(toUtf16(name));
  expectKnown(repository, names);
  if (names.empty()) names = repository.listNames();
  return {names.begin(), names.end()};
}

/// Says how many were left out.
HeadQuestions askHeads(const BatchArguments& arguments, const Catalogue& catalogue,
                       const std::set<std::u16string>& names) {
  HeadQuestions asked =
      arguments.together ? headsToHeadsTogether(catalogue, names) : headsToHeads(catalogue, names);
  tellLeftOut(asked, arguments.together);
  return asked;
}

/// All heads of the chosen metamodels to all heads.
Asked openHeads(const BatchArguments& arguments) {
  const Catalogue catalogue = readCatalogue(arguments.catalogue);
  auto repository = std::make_unique<CatalogueRepository>(catalogue);
  const HeadQuestions asked = askHeads(arguments, catalogue, chosenNames(arguments, *repository));
  std::string lines;
  for (const Question& question : asked.questions) lines += questionLine(question);
  return {std::move(repository), std::make_unique<std::istringstream>(std::move(lines))};
}

Asked open(const BatchArguments& arguments) {
  if (arguments.heads != arguments.questions.empty()) {
    throw CLI::ValidationError("batch", "takes a file of questions, or --heads");
  }
  if (arguments.heads) return openHeads(arguments);
  return {openCatalogue(arguments.catalogue),
          std::make_unique<std::ifstream>(openQuestions(arguments.questions))};
}

ExitStatus runBatch(const BatchArguments& arguments) {
  const Asked asked = open(arguments);
  BatchQuestions questions(*asked.questions, arguments.part, arguments.parts);
  BatchOutput output(arguments.output, arguments.resumes);
  output.skipAnswered(questions);
  const BatchCounts counts =
      searchAttended({}, SearchMonitor::Task::Search, SearchMonitor::Line::Never,
                     [&](const SearchLimits& attended) {
                       return answerBatch(
                           *asked.repository, [&] { return questions.next(); },
                           [&](const std::string& line) { output.write(line); },
                           arguments.options.limitsOf(attended));
                     });
  throwIfInterrupted("interrupted; what was answered is written");
  return tellCounts(counts);
}

}  // namespace

void addBatchCommand(CLI::App& program, Action& action) {
  const auto arguments = std::make_shared<BatchArguments>();
  CLI::App* batch = program.add_subcommand("batch", "Answer many questions about one catalogue");
  addCatalogueArgument(*batch, arguments->catalogue);
  readsInput(
      batch
          ->add_option("questions", arguments->questions,
                       "The questions, a line each: {\"from\": {name: version}, \"to\": {name: "
                       "version}}; - for standard input")
          ->type_name(fileTypeName));
  CLI::Option* heads = batch->add_flag(
      "--heads", arguments->heads,
      "Ask of each metamodel all ways from where its chains of hops begin to where they end, at "
      "most 16 of one chain, instead of questions");
  CLI::Option* of =
      batch->add_option("--of", arguments->of, "With --heads, of these metamodels only")
          ->type_name(nameTypeName)
          ->delimiter(',')
          ->allow_extra_args(false)
          ->needs(heads);
  batch
      ->add_flag("--together", arguments->together,
                 "With --heads, ask of the metamodels of --of as a set that moves together: from "
                 "where a chain of each begins to where one of each ends, at most 256 questions")
      ->needs(heads)
      ->needs(of);
  arguments->options.addTo(*batch);
  batch
      ->add_option_function<std::string>(
          "--part", [arguments](const std::string& text) { parsePart(text, *arguments); },
          "Answer only every N-th question, beginning with the I-th")
      ->type_name("I/N");
  batch->add_option("--output", arguments->output, "Write to this file instead of standard output")
      ->type_name(fileTypeName);
  batch
      ->add_flag("--resume", arguments->resumes,
                 "Go on after the answers that the output file holds")
      ->needs("--output");
  batch->footer(
      "Answers are JSON, a line each, in the order of the questions; \"line\" says which one it "
      "answers.\n"
      "A question that cannot be asked, or that a limit ends, is answered by saying so.\n"
      "Exit status: 0 all were answered, also by that there is no path, 2 bad usage or input, or "
      "some\n"
      "could not be asked, 3 limits left some open.\n"
      "Example: evopath batch data/operators.json data/questions.jsonl --timeout 10");
  batch->callback([arguments, &action] { action = [arguments] { return runBatch(*arguments); }; });
}

}  // namespace evopath
