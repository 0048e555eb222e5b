#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/catalogue_index.hpp"
#include "catalogue/hop_notes.hpp"
#include "catalogue/precedence.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/requirement.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// What a version needs beside it without being linked to it, and what is told of that.
struct CatalogueRequirement {
  pathfinder::PeerRequirement needed;
  std::u16string note = {};
};

/// One version of one metamodel in a catalogue.
struct CatalogueMetamodel {
  pathfinder::Metamodel descriptor;

  /// What a text version is said to stand for among the semantic versions, if anything.
  std::optional<pathfinder::SemVer> equivalent = {};

  /// What is told of it, for people to read: why it is deprecated, what to see to, a link. Empty
  /// when there is nothing to tell.
  std::u16string note = {};

  /// The same of each dependency, in their order. May be shorter than they are.
  std::vector<std::u16string> dependencyNotes = {};

  /// What it depends on only if that is there: files write it among the dependencies, as an
  /// optional one. What a repository lists has here as well, as requirements that are not optional,
  /// the dependencies that do not link (see `Catalogue`).
  std::vector<CatalogueRequirement> requirements = {};

  /// Empty when there is none.
  const std::u16string& noteOfDependency(std::size_t dependency) const {
    static const std::u16string none;
    return dependency < dependencyNotes.size() ? dependencyNotes[dependency] : none;
  }

  /// Its semantic version, or else the equivalent of its text version, if there is one.
  std::optional<pathfinder::SemVer> semVer() const {
    return descriptor.version.isSemVer() ? descriptor.version.getSemVer() : equivalent;
  }

  /// Its place in the order of its metamodel's versions: that of the equivalent that it is said to
  /// have, or else that which its version reads as. Without one it comes before all that have one.
  std::optional<Precedence> precedence() const {
    return equivalent ? Precedence(*equivalent) : Precedence::of(descriptor.version);
  }
};

/// One version for each name.
using Selection = std::unordered_map<std::u16string, pathfinder::VersionId>;

/// A question that a catalogue comes with: how to get from one selection to another.
struct Question {
  Selection from;
  Selection to;
};

/// What a catalogue consists of. The order of metamodels and of hops is the order of every answer.
struct CatalogueContent {
  std::vector<CatalogueMetamodel> metamodels;
  std::vector<pathfinder::Hop> hops;
  std::optional<Question> question = {};
  HopNotes hopNotes = {};
};

/// The rows of a catalogue, each made when it is looked at. Valid as long as the catalogue or a
/// copy of it.
template <class Row>
class CatalogueRowList {
 public:
  class Iterator {
   public:
    Iterator(const CatalogueRowList& list, std::size_t position)
        : list_(list), position_(position) {}

    Row operator*() const { return list_[position_]; }
    Iterator& operator++() {
      ++position_;
      return *this;
    }
    bool operator==(const Iterator& other) const { return position_ == other.position_; }

   private:
    const CatalogueRowList list_;
    std::size_t position_;
  };

  explicit CatalogueRowList(const PackedRows& rows) : rows_(&rows) {}

  std::size_t size() const;
  Row operator[](std::size_t position) const;

  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size()}; }

 private:
  const PackedRows* rows_;
};

template <>
TARN_EVOLUTION_CATALOGUE_EXPORT std::size_t CatalogueRowList<CatalogueMetamodel>::size() const;
template <>
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueMetamodel
CatalogueRowList<CatalogueMetamodel>::operator[](std::size_t position) const;
template <>
TARN_EVOLUTION_CATALOGUE_EXPORT std::size_t CatalogueRowList<pathfinder::Hop>::size() const;
template <>
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::Hop CatalogueRowList<pathfinder::Hop>::operator[](
    std::size_t position) const;

/// A closed, sound set of metamodels and hops. A value, cheap to copy; never changed once made, so
/// that any number of threads may read it. References that it returns are valid as long as it is.
/// Keeps each name, version and range once, however often rows repeat it.
///
/// Sound: no version stands twice; no two text versions of a metamodel share a semantic equivalent;
/// every dependency names a metamodel that has a version, and every hop leads between two versions
/// that are there. What is needed only if it is there need not be. Ranges may be empty or match
/// nothing: what depends on them cannot be linked, which is for the path finder to say.
///
/// A version may depend, directly or through others, on itself. A dependency that leads back does
/// not link: if some version that it admits depends on the version whose dependency it is, its
/// repositories make a requirement of it. Whether it does follows from the versions and
/// dependencies alone, whatever their order.
class TARN_EVOLUTION_CATALOGUE_EXPORT Catalogue {
 public:
  /// Throws CatalogueError, with JSON pointers for places, for the first thing found to be unsound.
  explicit Catalogue(CatalogueContent content);

  /// All of it, as it came.
  CatalogueContent content() const;

  CatalogueRowList<CatalogueMetamodel> metamodels() const {
    return CatalogueRowList<CatalogueMetamodel>(*rows_);
  }
  CatalogueRowList<pathfinder::Hop> hops() const {
    return CatalogueRowList<pathfinder::Hop>(*rows_);
  }
  /// Whether any version needs something beside it as `CatalogueMetamodel::requirements` tells.
  bool hasRequirements() const noexcept;

  const std::optional<Question>& question() const noexcept { return question_; }
  const HopNotes& hopNotes() const noexcept { return hopNotes_; }

  /// Look-ups by name and version; positions refer to `metamodels()` and `hops()`.
  const CatalogueIndex& index() const noexcept { return index_; }

 private:
  friend class CatalogueBuilder;
  friend std::unordered_map<CatalogueIndex::Position, CatalogueMetamodel> splitDependencies(
      const Catalogue& catalogue);

  TARN_EVOLUTION_CATALOGUE_NO_EXPORT Catalogue(std::shared_ptr<const PackedRows> rows,
                                               std::optional<Question> question, HopNotes hopNotes);

  std::shared_ptr<const PackedRows> rows_;
  std::optional<Question> question_;
  HopNotes hopNotes_;
  CatalogueIndex index_;
};

}  // namespace tarn::evolution::catalogue
