#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/check/finding.hpp"
#include "catalogue/reading/catalogue_rows.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A catalogue as it stands, sound or not: rows with their places, and what was found wrong in
/// reading them. A plain value, independent of the form that it was read from.
struct TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueDraft {
  enum class Form { Json, Tables };

  Form form = Form::Json;
  bool isReadable = true;  ///< when not, reading ended early, and only `findings` has a meaning
  std::vector<MetamodelRow> metamodels;
  std::vector<HopRow> hops;
  std::optional<SelectionDraft> questionFrom;
  std::optional<SelectionDraft> questionTo;
  std::vector<Finding> findings;

  /// The places of a row, or of one of its fields when that is given.
  Place placeOf(const MetamodelRow& row, const std::string& field = {}) const;
  Place placeOf(const MetamodelRow& row, const DependencyRow& dependency,
                const std::string& field = {}) const;
  Place placeOf(const HopRow& row, const std::string& field = {}) const;
};

}  // namespace tarn::evolution::catalogue
