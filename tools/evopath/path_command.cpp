#include <iostream>
#include <memory>
#include <sstream>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/path_picture.hpp"
#include "command.hpp"
#include "output_option.hpp"
#include "path_format.hpp"
#include "path_report.hpp"
#include "platform/in_memory/logging.hpp"
#include "question_options.hpp"

namespace evopath {

using tarn::evolution::catalogue::BrowsableRepository;
using tarn::evolution::catalogue::Question;
using tarn::evolution::pathfinder::BaselineHop;
using tarn::evolution::pathfinder::VersionBaseline;

namespace {

struct PathOptions : QuestionOptions {
  PathFormatOption form;
  OutputOption output;
  bool trace = false;
};

void traceToStandardError() {
  foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cerr << record.channel << " [" << record.severity << "] " << record.text << "\n";
      });
  foundation::log::in_memory::setEnabledLevels("tarn::evolution::pathfinder", 4 | 8);
}

PathReport explainNoPath(BrowsableRepository& repository, const Question& question) {
  if (repository.combine(question.from).empty()) {
    return reportNoPath("the versions to start from cannot stand together.");
  }
  if (repository.combine(question.to).empty()) {
    return reportNoPath("the versions to reach cannot stand together.");
  }
  return reportNoPath("no sequence of steps leads there.");
}

void printNoPath(const PathReport& report, const PathOptions& options) {
  if (options.form.isPicture()) {
    printText(report, std::cerr);
    return;
  }
  std::ostringstream text;
  (options.form.format == PathFormat::json ? printJson : printText)(report, text);
  options.output.write(text.str());
}

/// The baseline to draw the path from. A path without steps names none.
VersionBaseline sourceOf(const std::vector<BaselineHop>& path, const PathOptions& options,
                         BrowsableRepository& repository, const Question& question) {
  if (!path.empty()) return path.front().from;
  if (!options.form.isPicture()) return {};
  const auto sources = repository.combine(question.from);
  return sources.empty() ? VersionBaseline{} : sources.front();
}

ExitStatus runPath(const PathOptions& options) {
  if (options.trace) traceToStandardError();
  const auto repository = tarn::evolution::catalogue::openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  const auto path = repository->findPath(question.from, question.to);
  if (!path) {
    printNoPath(explainNoPath(*repository, question), options);
    return noPath;
  }
  const auto picture = tarn::evolution::catalogue::drawPath(
      *repository, sourceOf(*path, options, *repository, question), *path);
  options.output.write(renderPath(picture, options.form.format, options.output.colouring()));
  return found;
}

}  // namespace

void addPathCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<PathOptions>();
  CLI::App* path =
      program.add_subcommand("path", "Find the least-weight path between two selections");
  options->addTo(*path);
  options->form.addTo(*path);
  options->output.addTo(*path);
  path->add_flag("--trace", options->trace, "Show the path finder's reasoning on standard error");
  path->footer(
      "Exit status: 0 a path was found, 1 there is none, 2 bad usage or input.\n"
      "Example: evopath path data/operators.json --from cert-manager=1.12.1 --to "
      "cert-manager=1.14.2");
  path->callback([options, &action] { action = [options] { return runPath(*options); }; });
}

}  // namespace evopath
