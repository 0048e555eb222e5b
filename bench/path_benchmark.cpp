#include <benchmark/benchmark.h>

#include "catalogue/json_catalogue.hpp"
#include "floor.hpp"
#include "fresh_question.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::readJsonCatalogue;

namespace {

/// Takes turns at the floor and at the path.
void measurePath(benchmark::State& state, const QuestionFile& file) {
  const Catalogue catalogue = readJsonCatalogue(file.path);
  const CatalogueRepository weigher(catalogue);
  const Weight known = knownWeight(file, catalogue);
  const Floor floor(catalogue);
  Fastest floorTime;
  Fastest pathTime;
  while (state.KeepRunning()) {
    const auto askFloor = [&](auto& repository) { return floor.run(repository); };
    floorTime.add(timeFresh(catalogue, askFloor).seconds);
    const auto path = timeFresh(catalogue, askPath);
    pathTime.add(path.seconds);
    state.SetIterationTime(path.seconds);
    if (weightOf(weigher, path.result) != known) return state.SkipWithError("not the least weight");
  }
  state.counters["floor_seconds"] = floorTime.seconds();
  state.counters["path_seconds"] = pathTime.seconds();
}

}  // namespace

void registerPathBenchmarks() {
  for (const QuestionFile& file : questionFiles()) {
    benchmark::RegisterBenchmark(("Path/" + file.label).c_str(), measurePath, file)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace bench
