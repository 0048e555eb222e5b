#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/model/version_slots.hpp"

namespace tarn::evolution::catalogue {

/// Keeps equal values once, numbered from 0 in the order in which they came. References to values
/// stay as they are when others come.
template <class Value, class Hash = std::hash<Value>>
class NumberedValues {
 public:
  std::uint32_t add(const Value& value) {
    const auto [entry, isNew] =
        numbers_.try_emplace(value, static_cast<std::uint32_t>(values_.size()));
    if (isNew) values_.push_back(&entry->first);
    return entry->second;
  }

  /// `nothing` for a value that is not there.
  std::uint32_t find(const Value& value) const {
    const auto found = numbers_.find(value);
    return found == numbers_.end() ? nothing : found->second;
  }

  std::size_t size() const { return values_.size(); }
  const Value& operator[](std::uint32_t number) const { return *values_[number]; }

 private:
  std::unordered_map<Value, std::uint32_t, Hash> numbers_;
  std::vector<const Value*> values_;  // of the map
};

/// The versions and hops of a catalogue, with each name, version and range kept once: catalogues
/// repeat them so often that a row as such takes ten times the memory. Rows are unpacked one by one
/// for who wants them.
class PackedRows {
 public:
  struct Dependency {
    NameNumber name;
    std::uint32_t range;
  };

  /// A version of a metamodel, without what few have.
  struct Version {
    NameNumber name;
    std::uint32_t version;
    std::uint32_t equivalent;       ///< as a version; `nothing` where there is none
    std::size_t dependenciesBegin;  ///< they end where those of the next row begin

    /// The version that has the row's precedence (see `CatalogueMetamodel::precedence`).
    std::uint32_t ordering() const { return equivalent == nothing ? version : equivalent; }
  };

  struct Hop {
    NameNumber name;
    std::uint32_t from;
    std::uint32_t to;
    bool expensive;
  };

  PackedRows() = default;
  PackedRows(const PackedRows&) = delete;
  PackedRows& operator=(const PackedRows&) = delete;

  void add(const CatalogueMetamodel& metamodel);
  void add(const pathfinder::Hop& hop);

  CatalogueMetamodel metamodel(std::size_t position) const;
  pathfinder::Hop hop(std::size_t position) const;

  const std::vector<Version>& versions() const { return versions_; }
  const std::vector<Hop>& hops() const { return hops_; }

  std::size_t dependencyCount(std::size_t position) const {
    return dependenciesEnd(position) - versions_[position].dependenciesBegin;
  }
  const Dependency& dependency(std::size_t position, std::size_t number) const {
    return dependencies_[versions_[position].dependenciesBegin + number];
  }

  /// Whether any version has requirements.
  bool hasRequirements() const { return hasRequirements_; }

  std::size_t nameCount() const { return names_.size(); }
  NameNumber numberOfName(const std::u16string& name) const { return names_.find(name); }
  const std::u16string& name(NameNumber number) const { return names_[number]; }

  std::uint32_t numberOfVersion(const pathfinder::VersionId& version) const {
    return versionIds_.find(version);
  }
  const pathfinder::VersionId& version(std::uint32_t number) const { return versionIds_[number]; }
  const pathfinder::VersionRange& range(std::uint32_t number) const { return ranges_[number]; }

  std::size_t versionCount() const { return versionIds_.size(); }
  const std::optional<Precedence>& precedenceOf(std::uint32_t version) const {
    return precedences_[version];
  }

  /// See `CatalogueMetamodel::precedence`.
  const std::optional<Precedence>& precedence(std::size_t position) const {
    return precedenceOf(versions_[position].ordering());
  }

 private:
  struct RangeHash {
    std::size_t operator()(const pathfinder::VersionRange& range) const noexcept;
  };

  /// What few versions have.
  struct Extras {
    std::u16string note;
    std::vector<std::u16string> dependencyNotes;
    std::vector<CatalogueRequirement> requirements;
  };

  std::size_t dependenciesEnd(std::size_t position) const {
    return position + 1 < versions_.size() ? versions_[position + 1].dependenciesBegin
                                           : dependencies_.size();
  }
  std::uint32_t addVersion(const pathfinder::VersionId& version);

  NumberedValues<std::u16string> names_;
  NumberedValues<pathfinder::VersionId> versionIds_;
  std::vector<std::optional<Precedence>> precedences_;  // of these
  NumberedValues<pathfinder::VersionRange, RangeHash> ranges_;
  std::vector<Version> versions_;
  std::vector<Dependency> dependencies_;  // of one version after the other
  std::vector<Hop> hops_;
  std::unordered_map<std::size_t, Extras> extras_;  // by position
  bool hasRequirements_ = false;
};

std::shared_ptr<const PackedRows> packRows(const std::vector<CatalogueMetamodel>& metamodels,
                                           const std::vector<pathfinder::Hop>& hops);

}  // namespace tarn::evolution::catalogue
