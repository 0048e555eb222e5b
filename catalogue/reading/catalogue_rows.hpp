#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/reading/place.hpp"
#include "pathfinder/version_id.hpp"

/// The rows of a catalogue as far as they could be read. A part that is absent could not be, which
/// whoever reads tells of.
namespace tarn::evolution::catalogue {

/// What could be read of a dependency.
struct DependencyRow {
  std::size_t number = 0;   ///< among those of its metamodel
  std::uint64_t order = 0;  ///< see Place
  std::optional<std::u16string> name = {};
  std::optional<pathfinder::VersionRange> range = {};
  std::u16string note = {};
  bool isOptional = false;
};

/// What could be read of one version of a metamodel.
struct MetamodelRow {
  std::size_t number = 0;  ///< in its list, or the position in its table
  std::uint64_t order = 0;
  std::optional<std::u16string> name = {};
  std::optional<pathfinder::VersionId> version = {};
  std::optional<pathfinder::SemVer> equivalent = {};  ///< of text versions only; may be left out
  std::vector<DependencyRow> dependencies = {};
  std::u16string note = {};
};

/// What could be read of a hop.
struct HopRow {
  std::size_t number = 0;
  std::uint64_t order = 0;
  std::optional<std::u16string> name = {};
  std::optional<pathfinder::VersionId> from = {};
  std::optional<pathfinder::VersionId> to = {};
  std::u16string note = {};
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
  std::vector<SelectionRow> rows = {};
  bool isComplete = true;  ///< whether all of its versions could be read
};

}  // namespace tarn::evolution::catalogue
