#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "catalogue/model/catalogue_sink.hpp"
#include "catalogue/model/packed_rows.hpp"

namespace tarn::evolution::catalogue {

/// Makes a catalogue of the rows that it receives, none of which is kept as it came.
class CatalogueBuilder : public CatalogueSink {
 public:
  void addMetamodel(const CatalogueMetamodel& metamodel) override { rows_->add(metamodel); }
  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override {
    rows_->add(hop);
    hopNotes_.add(hop, note);
  }
  void setQuestion(const Question& question) override { question_ = question; }

  /// Once, after the last row. Throws as the constructor of `Catalogue` does.
  Catalogue finish() { return {std::move(rows_), std::move(question_), std::move(hopNotes_)}; }

 private:
  std::shared_ptr<PackedRows> rows_ = std::make_shared<PackedRows>();
  std::optional<Question> question_;
  HopNotes hopNotes_;
};

}  // namespace tarn::evolution::catalogue
