#include <filesystem>
#include <fstream>
#include <iostream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/open_catalogue.hpp"

using namespace tarn::evolution;

namespace {

void write(const std::string& file, const std::string& text) {
  std::ofstream(file) << text;
}

bool readsNames(const std::string& file) {
  write(file, R"({"metamodels": [{"name": "shape", "version": "1.0.0", "dependencies": []}],
                  "hops": []})");
  return catalogue::openCatalogue(file)->listNames() == std::vector<std::u16string>{u"shape"};
}

bool refusesByType(const std::string& file) {
  write(file, "{");
  try {
    catalogue::openCatalogue(file);
  } catch (const catalogue::CatalogueError&) {
    return true;
  }
  return false;
}

}  // namespace

int main() {
  const std::string file = "consumer-catalogue.json";
  const bool holds = readsNames(file) && refusesByType(file);
  std::filesystem::remove(file);
  std::cout << (holds ? "A catalogue opens, and a broken one is refused by type.\n" : "Not so.\n");
  return holds ? 0 : 1;
}
