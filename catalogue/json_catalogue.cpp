#include "catalogue/json_catalogue.hpp"

#include <fstream>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_stream.hpp"

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
  try {
    std::ifstream in = openForReading(file);
    return readJsonCatalogue(in);
  } catch (const CatalogueError& error) {
    throw error.inFile(file.string());
  }
}

}  // namespace tarn::evolution::catalogue
