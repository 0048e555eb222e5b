#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <vector>

#include "registration.hpp"

namespace {

/// Prints as usual, and notes whether a benchmark found its answer wrong.
class CheckingReporter : public benchmark::ConsoleReporter {
 public:
  CheckingReporter() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    failed_ |=
        std::any_of(runs.begin(), runs.end(), [](const Run& run) { return run.error_occurred; });
    ConsoleReporter::ReportRuns(runs);
  }

  bool hasFailed() const { return failed_; }

 private:
  bool failed_ = false;
};

void registerAll() {
  bench::registerPathBenchmarks();
  bench::registerExhaustiveBenchmarks();
  bench::registerProductGraphBenchmarks();
  bench::registerCacheBenchmarks();
  bench::registerLinkingBenchmarks();
  bench::registerTraceBenchmarks();
  bench::registerVersionBenchmarks();
}

/// False when an answer was wrong or nothing was run.
bool runAll() {
  CheckingReporter reporter;
  const std::size_t run = benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return run > 0 && !reporter.hasFailed();
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  try {
    registerAll();
    return runAll() ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << "\n";
    return 2;
  }
}
