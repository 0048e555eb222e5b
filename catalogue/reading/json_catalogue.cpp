#include "catalogue/json_catalogue.hpp"

#include <istream>
#include <utility>

#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/reading/json_writer.hpp"

namespace tarn::evolution::catalogue {

namespace {

class ContentSink : public CatalogueSink {
 public:
  void addMetamodel(const CatalogueMetamodel& metamodel) override {
    content.metamodels.push_back(metamodel);
  }
  void addHop(const pathfinder::Hop& hop) override { content.hops.push_back(hop); }
  void setQuestion(const Question& question) override { content.question = question; }

  CatalogueContent content;
};

}  // namespace

Catalogue readJsonCatalogue(std::istream& in) {
  ContentSink sink;
  streamJsonCatalogue(in, sink);
  return Catalogue(std::move(sink.content));
}

Catalogue readJsonCatalogue(const std::filesystem::path& file) {
  return readJsonFile(file, [](std::istream& in) { return readJsonCatalogue(in); });
}

void writeJsonCatalogue(const CatalogueContent& content, std::ostream& out) {
  JsonCatalogueWriter writer(out);
  for (const CatalogueMetamodel& metamodel : content.metamodels) writer.addMetamodel(metamodel);
  for (const pathfinder::Hop& hop : content.hops) writer.addHop(hop);
  if (content.question) writer.setQuestion(*content.question);
  writer.finish();
}

}  // namespace tarn::evolution::catalogue
