// The JSON reader: whatever the text is, it gives a catalogue that can be asked, and that reads
// again as it was written, or a CatalogueError.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "ask_everything.hpp"
#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"

using namespace tarn::evolution::catalogue;

namespace {

std::string written(const Catalogue& catalogue) {
  std::ostringstream out;
  writeJsonCatalogue(catalogue.content(), out);
  return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream in(std::string(data, data + size));
  try {
    CatalogueRepository repository(readJsonCatalogue(in));
    const std::string text = written(repository.catalogue());
    std::istringstream again(text);
    if (written(readJsonCatalogue(again)) != text) std::abort();
    fuzz::askEverything(repository);
  } catch (const CatalogueError&) {
  }
  return 0;
}
