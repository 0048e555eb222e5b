#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/check/finding.hpp"
#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// What could be read of a dependency. A part that is absent could not, which is a finding already.
struct DependencyRow {
  std::size_t number;   ///< among those of its metamodel
  std::uint64_t order;  ///< see Place
  std::optional<std::u16string> name;
  std::optional<pathfinder::VersionRange> range;
};

/// What could be read of one version of a metamodel.
struct MetamodelRow {
  std::size_t number;  ///< in its list, or the position in its table
  std::uint64_t order;
  std::optional<std::u16string> name;
  std::optional<pathfinder::VersionId> version;
  std::optional<pathfinder::SemVer> equivalent;  ///< of text versions only; may be left out
  std::vector<DependencyRow> dependencies;
};

/// What could be read of a hop.
struct HopRow {
  std::size_t number;
  std::uint64_t order;
  std::optional<std::u16string> name;
  std::optional<pathfinder::VersionId> from;
  std::optional<pathfinder::VersionId> to;
};

/// One version that the catalogue's question selects, both parts of which could be read.
struct SelectionRow {
  Place place;
  std::u16string name;
  pathfinder::VersionId version;
};

/// One side of the catalogue's question.
struct SelectionDraft {
  Place place;
  std::vector<SelectionRow> rows;
  bool isComplete = true;  ///< whether all of its versions could be read
};

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
