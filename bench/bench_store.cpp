#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "catalogue/utf16.hpp"
#include "peak_memory.hpp"
#include "stopwatch.hpp"

namespace {

using namespace tarn::evolution;
using nlohmann::ordered_json;

ordered_json measureOnce(const std::function<void()>& work) {
  const double seconds = bench::secondsOf(work);
  return {{"seconds", seconds}, {"peak_bytes", bench::peakBytes()}};
}

struct Question {
  std::string family;
  std::uint64_t last;

  /// The ten metamodels of the family, all at one version.
  catalogue::Selection at(std::uint64_t version) const {
    catalogue::Selection selection;
    for (int member = 0; member < 10; ++member) {
      const std::string name = "family-" + family + "-" + std::to_string(member);
      selection.emplace(catalogue::toUtf16(name), pathfinder::SemVer{version, 0, 0});
    }
    return selection;
  }

  void ask(catalogue::BrowsableRepository& repository) const {
    const auto path = repository.findPath(at(1), at(last));
    if (path && path->size() == last - 1) return;
    throw std::runtime_error("a wrong answer");
  }
};

/// Takes turns, each time with repositories that have not been asked before.
ordered_json measureQuestion(const std::filesystem::path& json, const std::filesystem::path& store,
                             const Question& question) {
  constexpr int rounds = 5;
  const catalogue::Catalogue content = catalogue::readJsonCatalogue(json);
  bench::Fastest opening;
  bench::Fastest openingAndAsking;
  bench::Fastest inStore;
  bench::Fastest inMemory;
  for (int round = 0; round < rounds; ++round) {
    opening.add(bench::secondsOf([&] { catalogue::openCatalogue(store); }));
    openingAndAsking.add(bench::secondsOf([&] { question.ask(*catalogue::openCatalogue(store)); }));
    const auto opened = catalogue::openCatalogue(store);
    inStore.add(bench::secondsOf([&] { question.ask(*opened); }));
    catalogue::CatalogueRepository repository(content);
    inMemory.add(bench::secondsOf([&] { question.ask(repository); }));
  }
  return {{"opening", opening.seconds()},
          {"opening_and_asking", openingAndAsking.seconds()},
          {"in_store", inStore.seconds()},
          {"in_memory", inMemory.seconds()}};
}

}  // namespace

/// What a store costs beside the JSON form. Each measurement is a process of its own, so that the
/// memory that it takes can be told.
int main(int argc, char** argv) {
  CLI::App program("Times the two forms of one catalogue, and prints JSON", "bench_store");
  program.require_subcommand(1);
  std::filesystem::path json;
  std::filesystem::path store;
  Question question;
  CLI::App* read = program.add_subcommand("read", "Read the JSON form into memory");
  CLI::App* import = program.add_subcommand("import", "Make the store");
  CLI::App* add = program.add_subcommand("add", "Add the JSON form to the store");
  CLI::App* ask =
      program.add_subcommand("ask", "Ask for the way of one family to its last versions");
  for (CLI::App* command : {read, import, add, ask}) {
    command->add_option("json", json, "As scripts/make_large_catalogue.py makes it")->required();
  }
  for (CLI::App* command : {import, add, ask}) command->add_option("store", store)->required();
  ask->add_option("family", question.family, "Its number")->required();
  ask->add_option("last", question.last, "The last of its versions")->required();
  CLI11_PARSE(program, argc, argv);
  try {
    if (*read) {
      std::cout << measureOnce([&] { catalogue::openCatalogue(json); });
    } else if (*import) {
      std::cout << measureOnce([&] { catalogue::importCatalogue(json, store); });
    } else if (*add) {
      std::cout << measureOnce([&] { catalogue::addToStore(store, json); });
    } else {
      std::cout << measureQuestion(json, store, question);
    }
  } catch (const std::exception& error) {
    std::cerr << "bench_store: " << error.what() << "\n";
    return 2;
  }
  return 0;
}
