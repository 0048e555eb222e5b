#pragma once

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Receives a catalogue row by row, so that nobody has to hold all of it.
///
/// Metamodels and hops come in the catalogue's order of each, but either may come first. What an
/// operation throws ends the reading and reaches its caller.
class CatalogueSink {
 public:
  virtual ~CatalogueSink() = default;

  virtual void addMetamodel(const CatalogueMetamodel& metamodel) = 0;
  virtual void addHop(const pathfinder::Hop& hop, const std::u16string& note) = 0;
  virtual void setQuestion(const Question& question) = 0;
};

}  // namespace tarn::evolution::catalogue
