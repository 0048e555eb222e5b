#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "fresh_question.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::CatalogueContent;
using tarn::evolution::catalogue::Selection;
using tarn::evolution::pathfinder::Dependency;
using tarn::evolution::pathfinder::LinkedMetamodel;
using tarn::evolution::pathfinder::Metamodel;
using tarn::evolution::pathfinder::SemVer;
using tarn::evolution::pathfinder::SemVerRange;
using tarn::evolution::pathfinder::VersionBaseline;

namespace {

/// A whole that depends on some parts at any of their versions, so that it can be linked in
/// versions ^ parts ways.
struct Whole {
  std::uint64_t parts;
  std::uint64_t versions;

  std::string label() const { return std::to_string(parts) + "x" + std::to_string(versions); }

  std::size_t variants() const { return static_cast<std::size_t>(std::pow(versions, parts)); }

  Catalogue catalogue() const {
    CatalogueContent content;
    std::vector<Dependency> anyPart;
    for (std::uint64_t i = 0; i < parts; ++i) {
      const std::u16string name = u"part" + std::u16string(1, static_cast<char16_t>(u'0' + i));
      for (std::uint64_t version = 1; version <= versions; ++version) {
        content.metamodels.push_back({Metamodel(name, SemVer{version, 0, 0}, {}), {}});
      }
      anyPart.emplace_back(name, SemVerRange{{1, 0, 0}, {versions + 1, 0, 0}});
    }
    content.metamodels.push_back({Metamodel(u"whole", SemVer{1, 0, 0}, anyPart), {}});
    return Catalogue(content);
  }
};

/// Links the whole and its parts.
void measureLinking(benchmark::State& state, const Whole& whole) {
  const Catalogue catalogue = whole.catalogue();
  const auto metamodels = catalogue.metamodels();
  const Metamodel descriptor = metamodels[metamodels.size() - 1].descriptor;
  while (state.KeepRunning()) {
    const auto linked = timeFresh(catalogue, [&](auto& repository) {
      return repository.getLinkedMetamodels(descriptor).size();
    });
    state.SetIterationTime(linked.seconds);
    if (linked.result != whole.variants()) return state.SkipWithError("not all variants");
  }
  state.counters["results"] = static_cast<double>(whole.variants());
}

/// Combines a selection of the whole alone, which is linked: one baseline for each variant.
void measureSelection(benchmark::State& state, const Whole& whole) {
  CatalogueRepository repository(whole.catalogue());
  const Selection selection{{u"whole", SemVer{1, 0, 0}}};
  repository.combine(selection);
  while (state.KeepRunning()) {
    std::vector<VersionBaseline> baselines;
    state.SetIterationTime(secondsOf([&] { baselines = repository.combine(selection); }));
    if (baselines.size() != whole.variants()) return state.SkipWithError("not all baselines");
  }
  state.counters["results"] = static_cast<double>(whole.variants());
}

/// Combines all variants of the whole with all versions of the parts, few of which agree.
void measureAlternatives(benchmark::State& state, const Whole& whole) {
  CatalogueRepository repository(whole.catalogue());
  std::unordered_map<std::u16string, std::vector<std::shared_ptr<LinkedMetamodel>>> alternatives;
  for (const auto& metamodel : repository.catalogue().metamodels()) {
    const auto& linked = repository.getLinkedMetamodels(metamodel.descriptor);
    auto& named = alternatives[metamodel.descriptor.name];
    named.insert(named.end(), linked.begin(), linked.end());
  }
  while (state.KeepRunning()) {
    std::vector<VersionBaseline> baselines;
    state.SetIterationTime(secondsOf([&] { baselines = VersionBaseline::combine(alternatives); }));
    if (baselines.size() != whole.variants()) return state.SkipWithError("not all baselines");
  }
  state.counters["results"] = static_cast<double>(whole.variants());
}

}  // namespace

void registerLinkingBenchmarks() {
  const auto add = [](const std::string& name, auto measure, const Whole& whole) {
    benchmark::RegisterBenchmark((name + "/" + whole.label()).c_str(), measure, whole)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  };
  for (const Whole whole : {Whole{1, 1000}, Whole{3, 10}, Whole{10, 2}}) {
    add("Link", measureLinking, whole);
    add("CombineSelection", measureSelection, whole);
    add("CombineAlternatives", measureAlternatives, whole);
  }
}

}  // namespace bench
