// Measures what a store costs beside the JSON form: opening, and one question asked of a fresh
// repository of each form.
//
// usage: store_benchmark CATALOGUE.json STORE FAMILY      as scripts/make_large_catalogue.py makes
// it
#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/utf16.hpp"

using namespace tarn::evolution;

namespace {

double millisecondsFor(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

double medianFor(const std::function<double()>& measure) {
  constexpr int runs = 5;
  std::vector<double> times;
  for (int run = 0; run < runs; ++run) times.push_back(measure());
  std::sort(times.begin(), times.end());
  return times[runs / 2];
}

/// The ten metamodels of a family, from one version to another.
catalogue::Selection family(const std::string& number, std::uint64_t version) {
  catalogue::Selection selection;
  for (int member = 0; member < 10; ++member) {
    const std::string name = "family-" + number + "-" + std::to_string(member);
    selection.emplace(catalogue::toUtf16(name), pathfinder::SemVer{version, 0, 0});
  }
  return selection;
}

void ask(catalogue::BrowsableRepository& repository, const std::string& number) {
  const auto path = repository.findPath(family(number, 1), family(number, 200));
  if (!path || path->size() != 199) std::cerr << "an unexpected answer\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const std::string number = argv[3];
  const catalogue::Catalogue content = catalogue::readJsonCatalogue(std::filesystem::path(argv[1]));
  const double parse = millisecondsFor([&] { catalogue::openCatalogue(argv[1]); });
  const double open =
      medianFor([&] { return millisecondsFor([&] { catalogue::openCatalogue(argv[2]); }); });
  const double both = medianFor(
      [&] { return millisecondsFor([&] { ask(*catalogue::openCatalogue(argv[2]), number); }); });
  const double inMemory = medianFor([&] {
    catalogue::CatalogueRepository repository(content);
    return millisecondsFor([&] { ask(repository, number); });
  });
  const double inStore = medianFor([&] {
    const auto repository = catalogue::openCatalogue(argv[2]);
    return millisecondsFor([&] { ask(*repository, number); });
  });
  std::cout << "opening the JSON form             " << parse << " ms\n"
            << "opening the store                 " << open << " ms\n"
            << "opening the store and asking      " << both << " ms\n"
            << "the question alone, in memory     " << inMemory << " ms\n"
            << "the question alone, in the store  " << inStore << " ms\n";
  return 0;
}
