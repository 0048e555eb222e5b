#include <memory>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/catalogue_graph.hpp"
#include "catalogue/picture/graphviz.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "known_versions.hpp"
#include "number_option.hpp"
#include "output_option.hpp"
#include "selection_argument.hpp"

namespace evopath {

namespace catalogue = tarn::evolution::catalogue;

namespace {

struct GraphOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> names;
  std::string format = "dot";
  catalogue::GraphRequest request{{}, false, 1000};
  OutputOption output;
};

catalogue::CatalogueGraph make(const GraphOptions& options) {
  const auto repository = catalogue::openCatalogue(options.catalogue);
  catalogue::GraphRequest request = options.request;
  for (const std::string& name : options.names) {
    request.names.push_back(catalogue::parseName(name));
  }
  expectKnown(*repository, request.names);
  try {
    return catalogue::makeGraph(*repository, request);
  } catch (const catalogue::GraphTooLarge& error) {
    throw std::runtime_error(std::string(error.what()) +
                             "; name fewer metamodels or give a higher --limit");
  }
}

ExitStatus runGraph(const GraphOptions& options) {
  const catalogue::CatalogueGraph graph = make(options);
  const std::string text = catalogue::written([&](std::ostream& out) {
    if (options.format == "mermaid") {
      catalogue::writeGraphMermaid(graph, out);
    } else {
      catalogue::writeGraphDot(graph, out);
    }
  });
  options.output.write(options.format == "svg" ? catalogue::drawWithGraphviz(text) : text);
  return ExitStatus::Found;
}

}  // namespace

void addGraphCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<GraphOptions>();
  CLI::App* graph = program.add_subcommand("graph", "Draw the hops and dependencies of metamodels");
  addCatalogueArgument(*graph, options->catalogue);
  graph->add_option("names", options->names, "The metamodels to draw; with none, all")
      ->type_name(nameTypeName);
  graph->add_flag("--with-dependencies", options->request.withDependencies,
                  "Draw as well the versions that they need, directly or not");
  graph->add_option("--format", options->format, "The form; svg needs Graphviz")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"dot", "svg", "mermaid"}))
      ->capture_default_str();
  addNumberOption(*graph, "--limit", options->request.limit,
                  "How many versions, ranges, hops and dependencies to draw at most");
  options->output.addTo(*graph);
  graph->footer(
      "Exit status: 0 drawn, 2 bad usage or input, also a graph beyond the limit.\n"
      "Example: evopath graph data/operators.json kuadrant-operator --with-dependencies "
      "--format svg --output kuadrant.svg");
  graph->callback([options, &action] { action = [options] { return runGraph(*options); }; });
}

}  // namespace evopath
