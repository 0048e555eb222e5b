#pragma once

#include <utility>

#include "catalogue/model/catalogue_sink.hpp"

namespace tarn::evolution::catalogue {

/// Keeps all that it receives.
class ContentSink : public CatalogueSink {
 public:
  void addMetamodel(const CatalogueMetamodel& metamodel) override {
    content_.metamodels.push_back(metamodel);
  }
  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override {
    content_.hops.push_back(hop);
    content_.hopNotes.add(hop, note);
  }
  void setQuestion(const Question& question) override { content_.question = question; }

  CatalogueContent take() { return std::move(content_); }

 private:
  CatalogueContent content_;
};

/// Hands everything on, metamodels first, then hops, then the question.
inline void sendAll(const CatalogueContent& content, CatalogueSink& sink) {
  for (const CatalogueMetamodel& metamodel : content.metamodels) sink.addMetamodel(metamodel);
  for (const pathfinder::Hop& hop : content.hops) sink.addHop(hop, content.hopNotes.of(hop));
  if (content.question) sink.setQuestion(*content.question);
}

}  // namespace tarn::evolution::catalogue
