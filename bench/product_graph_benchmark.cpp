#include <benchmark/benchmark.h>

#include <optional>

#include "catalogue/json_catalogue.hpp"
#include "fresh_question.hpp"
#include "product_graph.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::readJsonCatalogue;

namespace {

/// Takes turns at building and searching the product graph and at the path.
void measureProductGraph(benchmark::State& state, const QuestionFile& file) {
  const Catalogue catalogue = readJsonCatalogue(file.path);
  const CatalogueRepository weigher(catalogue);
  Fastest buildTime;
  Fastest searchTime;
  Fastest pathTime;
  std::optional<ProductGraph> graph;
  while (state.KeepRunning()) {
    const auto path = timeFresh(catalogue, askPath);
    pathTime.add(path.seconds);
    graph.reset();
    const double build = secondsOf([&] { graph.emplace(catalogue); });
    Weight weight;
    const double search = secondsOf([&] { weight = graph->leastWeight(); });
    buildTime.add(build);
    searchTime.add(search);
    state.SetIterationTime(build + search);
    if (weightOf(weigher, path.result) != weight)
      return state.SkipWithError("path and product graph differ in the least weight");
  }
  state.counters["build_seconds"] = buildTime.seconds();
  state.counters["search_seconds"] = searchTime.seconds();
  state.counters["path_seconds"] = pathTime.seconds();
  state.counters["vertices"] = static_cast<double>(graph->vertexCount());
  state.counters["edges"] = static_cast<double>(graph->edgeCount());
}

}  // namespace

void registerProductGraphBenchmarks() {
  for (const QuestionFile& file : questionFiles()) {
    if (!isProductSmall(readJsonCatalogue(file.path))) continue;
    benchmark::RegisterBenchmark(("ProductGraph/" + file.label).c_str(), measureProductGraph, file)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace bench
