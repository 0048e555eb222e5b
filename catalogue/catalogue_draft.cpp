#include "catalogue/catalogue_draft.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string rowText(CatalogueDraft::Form form, const std::string& list, std::size_t number) {
  const std::string text = std::to_string(number);
  return form == CatalogueDraft::Form::Json ? "/" + list + "/" + text : list + " row " + text;
}

std::string fieldText(CatalogueDraft::Form form, const std::string& field) {
  if (field.empty()) return {};
  return (form == CatalogueDraft::Form::Json ? "/" : ", column ") + field;
}

}  // namespace

Place CatalogueDraft::placeOf(const MetamodelRow& row, const std::string& field) const {
  return {rowText(form, "metamodels", row.number) + fieldText(form, field), row.order};
}

Place CatalogueDraft::placeOf(const MetamodelRow& row, const DependencyRow& dependency,
                              const std::string& field) const {
  const std::string owner = form == Form::Json ? rowText(form, "metamodels", row.number) : "";
  return {owner + rowText(form, "dependencies", dependency.number) + fieldText(form, field),
          dependency.order};
}

Place CatalogueDraft::placeOf(const HopRow& row, const std::string& field) const {
  return {rowText(form, "hops", row.number) + fieldText(form, field), row.order};
}

}  // namespace tarn::evolution::catalogue
