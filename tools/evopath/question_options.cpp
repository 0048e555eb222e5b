#include "question_options.hpp"

#include <stdexcept>

#include "file_arguments.hpp"
#include "selection_argument.hpp"

namespace evopath {

using tarn::evolution::catalogue::BrowsableRepository;
using tarn::evolution::catalogue::Question;
using tarn::evolution::catalogue::QuestionSide;

void QuestionOptions::addTo(CLI::App& command) {
  addCatalogueArgument(command, catalogue);
  auto* fromOption = command.add_option("--from", from, "The versions to start from")
                         ->type_name(selectionTypeName)
                         ->delimiter(',');
  auto* toOption = command.add_option("--to", to, "The versions to reach")
                       ->type_name(selectionTypeName)
                       ->delimiter(',');
  auto* questionFlag = command.add_flag("--question", question, "Ask the catalogue's own question");
  fromOption->needs(toOption)->excludes(questionFlag);
  toOption->needs(fromOption)->excludes(questionFlag);
  preference.addTo(command);
}

Question QuestionOptions::ask(BrowsableRepository& repository) const {
  Question asked = given(repository);
  asked.from = preference.apply(repository, asked.from);
  return asked;
}

Question QuestionOptions::given(BrowsableRepository& repository) const {
  if (!question && from.empty()) throw CLI::RequiredError("Either --question or --from and --to");
  if (!question)
    return {parseSelection("--from", from), parseSelection("--to", to, QuestionSide::To)};
  if (auto own = repository.getQuestion()) return *std::move(own);
  throw std::invalid_argument(catalogue.string() + ": the catalogue has no question");
}

}  // namespace evopath
