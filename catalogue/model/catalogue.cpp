#include "catalogue/catalogue.hpp"

#include <utility>

#include "catalogue/model/validation.hpp"

namespace tarn::evolution::catalogue {

Catalogue::Catalogue(CatalogueContent content)
    : content_(std::move(content)), index_(content_.metamodels, content_.hops) {
  validate(content_, index_);
}

}  // namespace tarn::evolution::catalogue
