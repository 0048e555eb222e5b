#include <memory>
#include <stdexcept>

#include "attended_explanation.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "limit_options.hpp"
#include "memory_advice.hpp"
#include "number_option.hpp"
#include "output_option.hpp"
#include "question_options.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct ExplainOptions : QuestionOptions {
  bool json = false;
  std::size_t budget = explanationBudget;
  LimitOptions limits;
  OutputOption output;
};

void print(const Explanation& explanation, const StepWeights& weights, std::ostream& out) {
  if (const auto* reason = std::get_if<UnknownEntries>(&explanation.reason)) {
    throw std::invalid_argument(describe(*reason));
  }
  if (std::holds_alternative<PathExists>(explanation.reason)) {
    out << "There is a path, which \"evopath path\" prints.\n";
  } else {
    writeExplanationText(explanation, weights, out);
  }
}

ExitStatus runExplain(const ExplainOptions& options) {
  const auto limits = options.limits.fromNow();
  const auto repository = openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  const Explanation explanation = adviseOnMemory(*repository, question, [&] {
    return explainAttended(*repository, question, options.budget, limits);
  });
  options.output.write(written([&](std::ostream& text) {
    if (options.json) {
      writeExplanationJson(explanation, weightsOf(*repository), text);
    } else {
      print(explanation, weightsOf(*repository), text);
    }
  }));
  return statusOf(explanation);
}

}  // namespace

void addExplainCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* explain =
      program.add_subcommand("explain", "Explain why there is no path, and how near one can get");
  options->addTo(*explain);
  explain->add_flag("--json", options->json, "Print the explanation as JSON");
  addNumberOption(*explain, "--budget", options->budget,
                  "How many questions about parts of the question may be asked");
  options->limits.addTo(*explain);
  options->output.addTo(*explain);
  explain->footer(
      "A limit that is reached once it is clear that there is no path ends the explanation with "
      "what\n"
      "is known by then. So does Ctrl-C, on standard error.\n"
      "Exit status: 0 there is a path, 1 there is none, 2 bad usage or input, 3 a limit was "
      "reached\n"
      "before it was known whether there is a path.\n"
      "Example: evopath explain data/operators.json --from limitador-operator=0.6.0 --to "
      "limitador-operator=0.3.0");
  explain->callback([options, &action] { action = [options] { return runExplain(*options); }; });
}

}  // namespace evopath
