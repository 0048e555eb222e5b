#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "catalogue/json_catalogue.hpp"
#include "fresh_question.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::readJsonCatalogue;
using tarn::evolution::pathfinder::VersionBaseline;
using tarn::evolution::pathfinder::VersionRepository;

namespace {

/// A question between baselines that has been asked once.
class AnsweredQuestion {
 public:
  explicit AnsweredQuestion(const std::string& label)
      : repository_(readJsonCatalogue(questionFile(label).path)),
        sources_(repository_.combine(repository_.catalogue().question()->from)),
        targets_(repository_.combine(repository_.catalogue().question()->to)),
        known_(knownWeight(questionFile(label), repository_.catalogue())),
        path_(ask().value()) {}

  Path ask() {
    return repository_.findPath(sources_, targets_, VersionRepository::Direction::Forward);
  }

  bool isRight(const Path& path) const { return weightOf(repository_, path) == known_; }

  /// The least that the cache could do: hash the baselines asked for, and copy the path.
  Path hashAndCopy() const {
    const VersionRepository::KeyHasherVersionBaselineUnordered hash;
    benchmark::DoNotOptimize(hash(sources_.front()) ^ hash(targets_.front()));
    return path_;
  }

 private:
  CatalogueRepository repository_;
  std::vector<VersionBaseline> sources_;
  std::vector<VersionBaseline> targets_;
  Weight known_;
  std::vector<tarn::evolution::pathfinder::BaselineHop> path_;
};

/// Takes turns at the question and at hashing and copying.
void measureCachedQuestion(benchmark::State& state, const std::string& label) {
  AnsweredQuestion question(label);
  Fastest cachedTime;
  Fastest copyTime;
  while (state.KeepRunning()) {
    Path answer;
    Path copy;
    const double cached = secondsOf([&] { answer = question.ask(); });
    cachedTime.add(cached);
    copyTime.add(secondsOf([&] { copy = question.hashAndCopy(); }));
    state.SetIterationTime(cached);
    if (!question.isRight(answer) || !question.isRight(copy))
      return state.SkipWithError("not the least weight");
  }
  state.counters["cached_seconds"] = cachedTime.seconds();
  state.counters["copy_seconds"] = copyTime.seconds();
}

void measureCachedQuestionOnThreads(benchmark::State& state, const std::string& label) {
  static std::unique_ptr<AnsweredQuestion> question;
  // The others wait for this thread before the first round.
  if (state.thread_index() == 0) question = std::make_unique<AnsweredQuestion>(label);
  Path answer;
  while (state.KeepRunning()) answer = question->ask();
  if (!question->isRight(answer)) state.SkipWithError("not the least weight");
  state.counters["questions"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace

void registerCacheBenchmarks() {
  for (const std::string label : {"uniform/4", "uniform/64", "uniform/1000", "chain/64"}) {
    benchmark::RegisterBenchmark(("Cached/" + label).c_str(), measureCachedQuestion, label)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  for (const std::string label : {"uniform/4", "uniform/64"}) {
    benchmark::RegisterBenchmark(("CachedOnThreads/" + label).c_str(),
                                 measureCachedQuestionOnThreads, label)
        ->Threads(1)
        ->Threads(2)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
  }
}

}  // namespace bench
