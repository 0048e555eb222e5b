#include <benchmark/benchmark.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/version_text.hpp"
#include "pathfinder/semver.hpp"
#include "pathfinder/version_id.hpp"
#include "registration.hpp"

namespace bench {

using tarn::evolution::catalogue::parseVersion;
using tarn::evolution::pathfinder::SemVer;
using tarn::evolution::pathfinder::SemVerRange;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRange;

namespace {

constexpr std::uint64_t count = 1000;

/// `make(place)` for a thousand places.
template <class Make>
auto listOf(const Make& make) {
  std::vector<decltype(make(std::uint64_t{}))> list;
  for (std::uint64_t place = 0; place < count; ++place) list.push_back(make(place));
  return list;
}

/// Times `function(input)` for each input, after which the results have to be `expected`.
template <class Input, class Function, class Output>
void add(const std::string& name, const std::vector<Input>& inputs, const Function& function,
         const std::vector<Output>& expected) {
  const auto measure = [=](benchmark::State& state) {
    std::vector<Output> results(inputs.size());
    while (state.KeepRunning()) {
      for (std::size_t i = 0; i < inputs.size(); ++i) results[i] = function(inputs[i]);
      benchmark::ClobberMemory();
    }
    if (results != expected) state.SkipWithError("wrong result");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(inputs.size()));
  };
  benchmark::RegisterBenchmark(("Version/" + name).c_str(), measure)->Unit(benchmark::kMicrosecond);
}

/// Ascending versions, some components with several digits.
SemVer versionAt(std::uint64_t place) {
  return {place / 100, place / 10 % 10, place % 10 * 1111};
}

std::string semanticTextAt(std::uint64_t place) {
  const auto [major, minor, patch] = versionAt(place);
  return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

std::string textAt(std::uint64_t place) {
  return "release-" + std::to_string(place);
}

template <class Text>
std::u16string widened(const Text& ascii) {
  return std::u16string(ascii.begin(), ascii.end());
}

void addParsing() {
  const auto semantic = listOf(semanticTextAt);
  add(
      "parse_semver", listOf([](auto place) { return widened(semanticTextAt(place)); }),
      [](const std::u16string& text) { return SemVer::parse(text); },
      listOf([](auto place) { return std::optional(versionAt(place)); }));
  add("read_semantic_version", semantic, parseVersion,
      listOf([](auto place) { return VersionId(versionAt(place)); }));
  add("read_text_version", listOf(textAt), parseVersion,
      listOf([](auto place) { return VersionId(widened(textAt(place))); }));
}

void addComparing() {
  const auto alternating = listOf([](auto place) { return place % 2 == 0; });
  add(
      "order_semvers", listOf([](auto place) {
        // Every other pair is in order.
        return std::pair(versionAt(place + place % 2), versionAt(place + 1 - place % 2));
      }),
      [](const auto& pair) { return pair.first < pair.second; }, alternating);
  add(
      "compare_text_versions", listOf([](auto place) {
        return std::pair(VersionId(widened(textAt(place))),
                         VersionId(widened(textAt(place + place % 2))));
      }),
      [](const auto& pair) { return pair.first == pair.second; }, alternating);
  add(
      "range_includes_version", listOf([](auto place) {
        const VersionRange range = SemVerRange{versionAt(place), versionAt(place + 1)};
        return std::pair(range, VersionId(versionAt(place + place % 2)));
      }),
      [](const auto& pair) { return pair.first.includes(pair.second); }, alternating);
}

}  // namespace

void registerVersionBenchmarks() {
  addParsing();
  addComparing();
}

}  // namespace bench
