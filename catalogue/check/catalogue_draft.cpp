#include "catalogue/check/catalogue_draft.hpp"

namespace tarn::evolution::catalogue {

using Form = CatalogueDraft::Form;

namespace {

std::string rowText(Form form, const std::string& list, std::size_t number) {
  const std::string text = std::to_string(number);
  return form == Form::Json ? "/" + list + "/" + text : "table " + list + ", row " + text;
}

/// The column of a field of the JSON form; empty for what is not one column of the row.
std::string columnOf(const std::string& field) {
  if (field == "semver") return "equivalent";
  if (field == "from") return "source";
  if (field == "to") return "target";
  const bool isSame =
      field == "name" || field == "version" || field == "expensive" || field == "note";
  return isSame ? field : "";
}

std::string fieldText(Form form, const std::string& field) {
  if (form == Form::Json) return field.empty() ? "" : "/" + field;
  const std::string column = columnOf(field);
  return column.empty() ? "" : ", column " + column;
}

}  // namespace

Place CatalogueDraft::placeOf(const MetamodelRow& row, const std::string& field) const {
  return {rowText(form, "metamodels", row.number) + fieldText(form, field), row.order};
}

Place CatalogueDraft::placeOf(const MetamodelRow& row, const DependencyRow& dependency,
                              const std::string& field) const {
  const std::string number = std::to_string(dependency.number);
  const std::string text =
      form == Form::Json
          ? rowText(form, "metamodels", row.number) + "/dependencies/" + number
          : "table dependencies, metamodel " + std::to_string(row.number) + ", ordinal " + number;
  return {text + fieldText(form, field), dependency.order};
}

Place CatalogueDraft::placeOf(const HopRow& row, const std::string& field) const {
  return {rowText(form, "hops", row.number) + fieldText(form, field), row.order};
}

}  // namespace tarn::evolution::catalogue
