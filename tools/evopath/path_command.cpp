#include "path_command.hpp"

#include <iostream>
#include <stdexcept>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "path_report.hpp"
#include "platform/in_memory/logging.hpp"
#include "selection_argument.hpp"

namespace evopath {

using tarn::evolution::catalogue::Catalogue;
using tarn::evolution::catalogue::CatalogueRepository;
using tarn::evolution::catalogue::Question;

namespace {

void traceToStandardError() {
  foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cerr << record.channel << " [" << record.severity << "] " << record.text << "\n";
      });
  foundation::log::in_memory::setEnabledLevels("tarn::evolution::pathfinder", 4 | 8);
}

Question findQuestion(const PathOptions& options, const Catalogue& catalogue) {
  if (!options.question) {
    return {parseSelection("--from", options.from), parseSelection("--to", options.to)};
  }
  if (!catalogue.question()) {
    throw std::invalid_argument(options.catalogue.string() + ": the catalogue has no question");
  }
  return *catalogue.question();
}

PathReport answer(CatalogueRepository& repository, const Question& question) {
  if (const auto path = repository.findPath(question.from, question.to)) {
    return reportPath(repository, *path);
  }
  if (repository.combine(question.from).empty()) {
    return reportNoPath("the versions to start from cannot stand together.");
  }
  if (repository.combine(question.to).empty()) {
    return reportNoPath("the versions to reach cannot stand together.");
  }
  return reportNoPath("no sequence of steps leads there.");
}

}  // namespace

ExitStatus runPath(const PathOptions& options) {
  if (options.trace) traceToStandardError();
  Catalogue catalogue = tarn::evolution::catalogue::readJsonCatalogue(options.catalogue);
  const Question question = findQuestion(options, catalogue);
  CatalogueRepository repository(std::move(catalogue));
  const PathReport report = answer(repository, question);
  (options.json ? printJson : printText)(report, std::cout);
  return report.found ? found : noPath;
}

}  // namespace evopath
