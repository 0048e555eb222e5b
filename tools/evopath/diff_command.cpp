#include <filesystem>
#include <memory>
#include <stdexcept>

#include "batch_options.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/comparison/comparison_output.hpp"
#include "catalogue/comparison/heads_to_heads.hpp"
#include "catalogue/explanation/batch.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "heads_report.hpp"
#include "interruption.hpp"
#include "known_versions.hpp"
#include "limit_options.hpp"
#include "output_option.hpp"
#include "question_file.hpp"
#include "search_monitor.hpp"
#include "selection_argument.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct DiffOptions {
  std::filesystem::path former;
  std::filesystem::path present;
  std::vector<std::string> without;
  std::filesystem::path questions;
  bool content = false;
  bool json = false;
  JobsOption jobs;
  std::optional<double> questionSeconds;
  LimitOptions limits;
  OutputOption output;
};

Catalogue withoutVersions(const DiffOptions& options, const Catalogue& former) {
  const Selection withdrawn = parseSelection("--without", options.without);
  CatalogueRepository repository(former);
  expectKnown(repository, withdrawn);
  return Catalogue(tarn::evolution::catalogue::withoutVersions(former.content(), withdrawn));
}

std::vector<Question> readQuestions(const std::filesystem::path& file) {
  std::ifstream in = openQuestions(file);
  BatchQuestions lines(in, 1, 1);
  std::vector<Question> questions;
  while (const auto line = lines.next()) {
    try {
      questions.push_back(readQuestion(*line));
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument(file.string() + ": line " + std::to_string(line->line) + ": " +
                                  error.what());
    }
  }
  return questions;
}

std::vector<Question> headQuestions(const Catalogue& former, const Catalogue& present) {
  HeadQuestions asked = headsToHeads(former, present);
  tellLeftOut(asked, false);
  return std::move(asked.questions);
}

Comparison compareAttended(const DiffOptions& options, const Catalogue& former,
                           const Catalogue& present) {
  const auto questions =
      options.questions.empty() ? headQuestions(former, present) : readQuestions(options.questions);
  SearchMonitor monitor(options.limits.fromNow(), SearchMonitor::Task::Comparison,
                        SearchMonitor::Line::OnTerminal);
  monitor.count(0, questions.size());
  const auto attended = monitor.limits();
  ComparisonLimits limits;
  if (options.questionSeconds) {
    limits.time = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(*options.questionSeconds));
  }
  limits.memory = attended.memory;
  limits.stop = attended.stop;
  limits.deadline = attended.deadline;
  limits.threads = options.jobs.threads();
  limits.progress = [&](std::size_t compared) { monitor.count(compared, questions.size()); };
  return compare(former, present, questions, limits);
}

ExitStatus differenceStatus(const Comparison& comparison) {
  if (comparison.unasked > 0) return ExitStatus::Open;
  for (const AnswerDifference& answer : comparison.answers) {
    if (answer.change == AnswerChange::Open) return ExitStatus::Open;
  }
  return comparison.content.isNone() && comparison.answers.empty() ? ExitStatus::Same
                                                                   : ExitStatus::Different;
}

ExitStatus runDiff(const DiffOptions& options) {
  if (options.present.empty() == options.without.empty()) {
    throw CLI::ValidationError("diff", "takes a second catalogue, or --without");
  }
  const Catalogue former = readCatalogue(options.former);
  const Catalogue present =
      options.present.empty() ? withoutVersions(options, former) : readCatalogue(options.present);
  const Comparison comparison = compareAttended(options, former, present);
  const ContentList list = options.content ? ContentList::Listed : ContentList::Counted;
  options.output.write(written([&](std::ostream& text) {
    if (options.json) {
      writeComparisonJson(comparison, list, text);
    } else {
      writeComparisonText(comparison, list, options.output.colouring(), text);
    }
  }));
  throwIfInterrupted("interrupted; what was compared is written");
  return differenceStatus(comparison);
}

}  // namespace

void addDiffCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<DiffOptions>();
  CLI::App* diff = program.add_subcommand(
      "diff", "Compare catalogues: which questions lose their path, and through what");
  addInputArgument(*diff, "catalogue", options->former,
                   "The former catalogue, a JSON file or a SQLite store; - for JSON on standard "
                   "input");
  readsInput(diff->add_option("present", options->present, "The present catalogue, in either form")
                 ->type_name(fileTypeName));
  diff->add_option("--without", options->without,
                   "Compare with the same catalogue without these versions instead")
      ->type_name(selectionTypeName)
      ->delimiter(',')
      ->allow_extra_args(false);
  readsInput(diff->add_option("--questions", options->questions,
                              "Ask these, a line each as for batch, instead of heads to heads")
                 ->type_name(fileTypeName));
  diff->add_flag("--content", options->content, "List all versions and hops that differ");
  diff->add_flag("--json", options->json, "Print the comparison as JSON");
  options->jobs.addTo(*diff);
  addSecondsOption(*diff, "--question-timeout", options->questionSeconds,
                   "Leave a question open that takes so much time in one of the catalogues");
  options->limits.addTo(*diff);
  options->output.addTo(*diff);
  diff->footer(
      "Without --questions, of each metamodel the ways are asked for from where its chains of "
      "hops\n"
      "begin to where they end in the former catalogue, and from there to the newest of the "
      "present\n"
      "one.\n"
      "What is named as the reason is enough to change the answer: the path finder was asked.\n"
      "Memory is that of each question; what --timeout ends says how many were not asked.\n"
      "Exit status: 0 the catalogues are the same, 1 something differs, 2 bad usage or input, 3 "
      "limits\n"
      "left some answers open or some questions not asked.\n"
      "Example: evopath diff data/operators.json --without limitador-operator=0.7.0");
  diff->callback([options, &action] { action = [options] { return runDiff(*options); }; });
}

}  // namespace evopath
