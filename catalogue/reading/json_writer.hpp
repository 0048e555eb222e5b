#pragma once

#include <iosfwd>

#include "catalogue/model/catalogue_sink.hpp"

namespace tarn::evolution::catalogue {

/// Writes a catalogue in JSON, in the form that `readJsonCatalogue` reads, a row on each line.
/// Reading it again gives equal rows in the same order.
///
/// Metamodels must come first, then hops, then the question. The stream's state tells of failure.
class JsonCatalogueWriter : public CatalogueSink {
 public:
  explicit JsonCatalogueWriter(std::ostream& out);

  void addMetamodel(const CatalogueMetamodel& metamodel) override;
  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override;
  void setQuestion(const Question& question) override;

  /// Must be called once, after the last row.
  void finish();

 private:
  void beginRow();
  void endMetamodels();
  void endHops();

  std::ostream& out_;
  bool isInMetamodels_ = true;
  bool isInHops_ = false;
  bool isFirstRow_ = true;
};

}  // namespace tarn::evolution::catalogue
