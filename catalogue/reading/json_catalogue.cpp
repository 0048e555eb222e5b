#include "catalogue/json_catalogue.hpp"

#include <istream>

#include "catalogue/model/catalogue_builder.hpp"
#include "catalogue/model/content_sink.hpp"
#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/reading/json_writer.hpp"

namespace tarn::evolution::catalogue {

Catalogue readJsonCatalogue(std::istream& in) {
  CatalogueBuilder builder;
  streamJsonCatalogue(in, builder);
  return builder.finish();
}

Catalogue readJsonCatalogue(const std::filesystem::path& file) {
  return readJsonFile(file, [](std::istream& in) { return readJsonCatalogue(in); });
}

void writeJsonCatalogue(const CatalogueContent& content, std::ostream& out) {
  JsonCatalogueWriter writer(out);
  sendAll(content, writer);
  writer.finish();
}

}  // namespace tarn::evolution::catalogue
