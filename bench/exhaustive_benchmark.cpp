#include <benchmark/benchmark.h>

#include "catalogue/json_catalogue.hpp"
#include "fresh_question.hpp"
#include "product_graph.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::readJsonCatalogue;

namespace {

/// Takes turns at the exhaustive engine without a budget and at the path as the library finds it.
void measureExhaustiveEngine(benchmark::State& state, const QuestionFile& file) {
  const Catalogue catalogue = readJsonCatalogue(file.path);
  const CatalogueRepository weigher(catalogue);
  const Weight known = knownWeight(file, catalogue);
  Fastest exhaustiveTime;
  Fastest pathTime;
  while (state.KeepRunning()) {
    const auto path = timeFresh(catalogue, askPath);
    pathTime.add(path.seconds);
    const auto exhaustive = timeFresh(catalogue, askExhaustiveEngine);
    exhaustiveTime.add(exhaustive.seconds);
    state.SetIterationTime(exhaustive.seconds);
    if (weightOf(weigher, path.result) != known || weightOf(weigher, exhaustive.result) != known)
      return state.SkipWithError("not the least weight");
  }
  state.counters["exhaustive_seconds"] = exhaustiveTime.seconds();
  state.counters["path_seconds"] = pathTime.seconds();
  state.counters["within_budget"] = timeFresh(catalogue, isWithinBudget).result ? 1 : 0;
}

}  // namespace

void registerExhaustiveBenchmarks() {
  for (const QuestionFile& file : questionFiles()) {
    if (!isProductSmall(readJsonCatalogue(file.path))) continue;
    benchmark::RegisterBenchmark(("Exhaustive/" + file.label).c_str(), measureExhaustiveEngine,
                                 file)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace bench
