#include <memory>
#include <string>

#include "batch_options.hpp"
#include "catalogue/explorer/explorer_answers.hpp"
#include "catalogue/explorer/explorer_html.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "interruption.hpp"
#include "output_option.hpp"
#include "question_file.hpp"
#include "search_monitor.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::SearchLimits;

namespace {

struct ExploreOptions {
  std::filesystem::path catalogue;
  std::filesystem::path questions;  // empty for the customary ones
  BatchOptions batch;
  OutputOption output;
};

/// How long a customary question may take, and how much memory, unless options say otherwise.
constexpr double customarySeconds = 1;
constexpr std::uint64_t customaryBytes = std::uint64_t{1} << 30;

ExplorerAnswers answer(const ExploreOptions& options, BrowsableRepository& repository) {
  BatchOptions batch = options.batch;
  if (options.questions.empty()) {
    batch.limits.seconds = batch.limits.seconds.value_or(customarySeconds);
    batch.limits.bytes = batch.limits.bytes.value_or(customaryBytes);
  }
  return searchAttended({}, SearchMonitor::Task::Search, SearchMonitor::Line::Never,
                        [&](const SearchLimits& attended) {
                          const BatchLimits limits = batch.limitsOf(attended);
                          if (options.questions.empty())
                            return answerCustomaryQuestions(repository, limits);
                          std::ifstream in = openQuestions(options.questions);
                          BatchQuestions questions(in, 1, 1);
                          return answerForExplorer(
                              repository, [&] { return questions.next(); }, limits);
                        });
}

/// How the page's command lines name the catalogue; what came through a pipe has no name.
std::string nameOf(const std::filesystem::path& catalogue) {
  return std::filesystem::is_regular_file(catalogue) ? catalogue.string() : "CATALOGUE";
}

ExitStatus runExplore(const ExploreOptions& options) {
  const auto repository = openCatalogue(options.catalogue);
  const ExplorerAnswers answers = answer(options, *repository);
  throwIfInterrupted("interrupted; no page was written");
  options.output.write(written([&](std::ostream& page) {
    writeExplorerHtml(*repository, nameOf(options.catalogue), answers, page);
  }));
  return options.questions.empty() ? ExitStatus::Found : tellCounts(answers.counts);
}

}  // namespace

void addExploreCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ExploreOptions>();
  CLI::App* explore =
      program.add_subcommand("explore", "Make a page to look around in a catalogue");
  addCatalogueArgument(*explore, options->catalogue);
  readsInput(
      explore
          ->add_option("--questions", options->questions,
                       "The questions whose answers the page has, a line each as for batch; - for "
                       "standard input. Without it, the catalogue's own one and, for each "
                       "metamodel, the way from its oldest version to the newest that can be "
                       "reached, each within a second and 1G unless limits are given")
          ->type_name(fileTypeName));
  options->batch.addTo(*explore);
  options->output.addTo(*explore);
  explore->get_option("--output")->required();
  explore->footer(
      "The page is one HTML file, opened by any browser, and asks nothing of the network. For "
      "what it\n"
      "does not answer, it shows the command line that does.\n"
      "Exit status: 0 written, 2 bad usage or input, or some questions could not be asked, 3 "
      "limits left\n"
      "some of them open; the page is written in both cases of questions.\n"
      "Example: evopath explore data/operators.json --output operators.html");
  explore->callback([options, &action] { action = [options] { return runExplore(*options); }; });
}

}  // namespace evopath
