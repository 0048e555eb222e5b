#include <benchmark/benchmark.h>

#include <atomic>
#include <ostream>

#include "messages/trace.hpp"
#include "registration.hpp"
#include "stopwatch.hpp"

namespace bench {

using tarn::evolution::diagnostics::trace;
using tarn::evolution::diagnostics::TraceLevel;

namespace {

constexpr int rounds = 10'000;

std::atomic<unsigned> flags{0};
int written = 0;

[[gnu::noinline]] void passTracePoints() {
  for (int i = 0; i < rounds; ++i) {
    trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << "Round " << ++written; });
  }
}

/// One load and one branch a round.
[[gnu::noinline]] void passFlag() {
  for (int i = 0; i < rounds; ++i) {
    if ((flags.load(std::memory_order_relaxed) & 4U) != 0) [[unlikely]]
      ++written;
  }
}

/// Takes turns at a loop of trace points and at a loop of one load and one branch.
void measureTracePoint(benchmark::State& state) {
  Fastest traceTime;
  Fastest emptyTime;
  while (state.KeepRunning()) {
    const double traced = secondsOf(passTracePoints);
    traceTime.add(traced);
    emptyTime.add(secondsOf(passFlag));
    state.SetIterationTime(traced);
  }
  if (written != 0) state.SkipWithError("the trace is on");
  state.counters["trace_seconds"] = traceTime.seconds() / rounds;
  state.counters["empty_seconds"] = emptyTime.seconds() / rounds;
}

}  // namespace

void registerTraceBenchmarks() {
  benchmark::RegisterBenchmark("Trace/off", measureTracePoint)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace bench
