#include "catalogue/catalogue.hpp"

#include <utility>

#include "catalogue/model/packed_rows.hpp"
#include "catalogue/model/validation.hpp"

namespace tarn::evolution::catalogue {

template <>
std::size_t CatalogueRowList<CatalogueMetamodel>::size() const {
  return rows_->versions().size();
}

template <>
CatalogueMetamodel CatalogueRowList<CatalogueMetamodel>::operator[](std::size_t position) const {
  return rows_->metamodel(position);
}

template <>
std::size_t CatalogueRowList<pathfinder::Hop>::size() const {
  return rows_->hops().size();
}

template <>
pathfinder::Hop CatalogueRowList<pathfinder::Hop>::operator[](std::size_t position) const {
  return rows_->hop(position);
}

Catalogue::Catalogue(CatalogueContent content)
    : Catalogue(packRows(content.metamodels, content.hops), std::move(content.question),
                std::move(content.hopNotes)) {}

Catalogue::Catalogue(std::shared_ptr<const PackedRows> rows, std::optional<Question> question,
                     HopNotes hopNotes)
    : rows_(std::move(rows)),
      question_(std::move(question)),
      hopNotes_(std::move(hopNotes)),
      index_(rows_) {
  validate(*rows_, index_);
}

bool Catalogue::hasRequirements() const noexcept {
  return rows_->hasRequirements();
}

CatalogueContent Catalogue::content() const {
  CatalogueContent content;
  content.metamodels.reserve(metamodels().size());
  for (CatalogueMetamodel&& metamodel : metamodels()) {
    content.metamodels.push_back(std::move(metamodel));
  }
  content.hops.reserve(hops().size());
  for (pathfinder::Hop&& hop : hops()) content.hops.push_back(std::move(hop));
  content.question = question_;
  content.hopNotes = hopNotes_;
  return content;
}

}  // namespace tarn::evolution::catalogue
