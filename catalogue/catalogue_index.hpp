#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "catalogue/precedence.hpp"
#include "catalogue/version_scale.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

class IndexTables;
class PackedRows;
struct CatalogueMetamodel;

/// Finds metamodels and hops by name and version. Answers are positions in the lists that the index
/// was built from, in ascending order; a span is valid as long as the index or a copy of it.
///
/// To find a version, its hops or a range takes hash look-ups and a binary search among the
/// versions of the name.
class TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueIndex {
 public:
  using Position = std::uint32_t;
  using Positions = std::vector<Position>;

  CatalogueIndex(const std::vector<CatalogueMetamodel>& metamodels,
                 const std::vector<pathfinder::Hop>& hops);

  /// The index of a catalogue.
  explicit CatalogueIndex(std::shared_ptr<const PackedRows> rows);

  /// The metamodels of one version: those that carry it and, when it is semantic, those whose text
  /// version is said to be equivalent to it.
  std::span<const Position> metamodelsAt(const std::u16string& name,
                                         const pathfinder::VersionId& version) const;

  /// The metamodel that carries a version, otherwise the first that is equivalent to it.
  std::optional<Position> metamodelOf(const std::u16string& name,
                                      const pathfinder::VersionId& version) const;

  /// The metamodels that `range` admits (see `admits`).
  Positions metamodelsIn(const std::u16string& name, const pathfinder::VersionRange& range) const;

  std::span<const Position> hopsFrom(const std::u16string& name,
                                     const pathfinder::VersionId& version) const;

  /// All metamodels and all hops of a name; none for one that is not there.
  std::span<const Position> metamodelsOf(const std::u16string& name) const;
  std::span<const Position> hopsOf(const std::u16string& name) const;

  bool hasMetamodel(const std::u16string& name) const { return !metamodelsOf(name).empty(); }

  /// All names that have a metamodel, ascending.
  std::vector<std::u16string> names() const;

  /// All metamodels of a name that have a precedence, ascending by it; none for a name that is not
  /// there.
  std::span<const Position> orderedVersions(const std::u16string& name) const;

  /// See `CatalogueMetamodel::precedence`.
  const std::optional<Precedence>& precedence(Position metamodel) const;

  /// How the versions of a name are shown to the path finder.
  const VersionScale& scale(const std::u16string& name) const;

 private:
  TARN_EVOLUTION_CATALOGUE_NO_EXPORT Positions metamodelsInAny(
      const std::u16string& name, const std::vector<pathfinder::VersionRange>& ranges) const;

  std::shared_ptr<const IndexTables> tables_;
};

}  // namespace tarn::evolution::catalogue
