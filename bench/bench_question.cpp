#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "catalogue/json_catalogue.hpp"
#include "floor.hpp"
#include "fresh_question.hpp"
#include "peak_memory.hpp"

namespace {

using nlohmann::ordered_json;

struct Wanted {
  bool byLearning = false;
  bool withoutFloor = false;
  int rounds = 1;
};

/// Takes turns at the floor, when that is wanted, and at the path, and tells of the fastest of
/// each.
ordered_json measure(const bench::Catalogue& catalogue, const Wanted& wanted) {
  if (!catalogue.question()) throw std::invalid_argument("the catalogue has no question");
  const bench::Floor floor(catalogue);
  bench::Fastest floorTime;
  bench::Fastest pathTime;
  bench::Path answer;
  for (int round = 0; round < wanted.rounds; ++round) {
    const auto askFloor = [&](auto& repository) { return floor.run(repository); };
    if (!wanted.withoutFloor) floorTime.add(bench::timeFresh(catalogue, askFloor).seconds);
    const auto ask = wanted.byLearning ? bench::askLearningEngine : bench::askPath;
    auto path = bench::timeFresh(catalogue, ask);
    pathTime.add(path.seconds);
    answer = std::move(path.result);
  }
  ordered_json report{{"path_seconds", pathTime.seconds()}};
  if (!wanted.withoutFloor) report["floor_seconds"] = floorTime.seconds();
  const auto weight = bench::weightOf(bench::CatalogueRepository(catalogue), answer);
  report["weight"] = weight ? ordered_json(*weight) : ordered_json(nullptr);
  report["steps"] = answer ? answer->size() : 0;
  report["peak_bytes"] = bench::peakBytes();
  return report;
}

}  // namespace

/// Answers one question in a process of its own, which others can limit in time and memory.
int main(int argc, char** argv) {
  CLI::App program("Times the question of one catalogue, beside its floor, and prints JSON",
                   "bench_question");
  std::filesystem::path file;
  Wanted wanted;
  program.add_option("catalogue", file, "The catalogue, a JSON file with a question")->required();
  program.add_flag("--learning", wanted.byLearning, "Plan by learning from the start");
  program.add_flag("--without-floor", wanted.withoutFloor, "Time the path alone");
  program.add_option("--rounds", wanted.rounds, "How often to ask")->check(CLI::PositiveNumber);
  CLI11_PARSE(program, argc, argv);
  try {
    std::cout << measure(tarn::evolution::catalogue::readJsonCatalogue(file), wanted) << "\n";
  } catch (const std::exception& error) {
    std::cerr << "bench_question: " << error.what() << "\n";
    return 2;
  }
  return 0;
}
