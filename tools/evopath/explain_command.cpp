#include <iostream>
#include <memory>
#include <stdexcept>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/open_catalogue.hpp"
#include "command.hpp"
#include "explanation_status.hpp"
#include "question_options.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

struct ExplainOptions : QuestionOptions {
  bool json = false;
  std::size_t budget = explanationBudget;
};

void print(const Explanation& explanation, const StepWeights& weights) {
  if (const auto* reason = std::get_if<UnknownEntries>(&explanation.reason)) {
    throw std::invalid_argument(describe(*reason));
  }
  if (std::holds_alternative<PathExists>(explanation.reason)) {
    std::cout << "There is a path, which \"evopath path\" prints.\n";
  } else {
    writeExplanationText(explanation, weights, std::cout);
  }
}

ExitStatus runExplain(const ExplainOptions& options) {
  const auto repository = openCatalogue(options.catalogue);
  const Explanation explanation = explain(*repository, options.ask(*repository), options.budget);
  if (options.json) {
    writeExplanationJson(explanation, weightsOf(*repository), std::cout);
  } else {
    print(explanation, weightsOf(*repository));
  }
  return statusOf(explanation);
}

}  // namespace

void addExplainCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* explain =
      program.add_subcommand("explain", "Explain why there is no path, and how near one can get");
  options->addTo(*explain);
  explain->add_flag("--json", options->json, "Print the explanation as JSON");
  explain
      ->add_option("--budget", options->budget,
                   "How many questions about parts of the question may be asked")
      ->type_name("NUMBER")
      ->capture_default_str();
  explain->footer(
      "Exit status: 0 there is a path, 1 there is none, 2 bad usage or input.\n"
      "Example: evopath explain data/operators.json --from limitador-operator=0.6.0 --to "
      "limitador-operator=0.3.0");
  explain->callback([options, &action] { action = [options] { return runExplain(*options); }; });
}

}  // namespace evopath
