#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/browsable_repository.hpp"

namespace tarn::evolution::catalogue {

/// The versions of a metamodel, numbered from 0: those without a precedence first, in the
/// catalogue's order, then by ascending precedence. The repository must outlive it.
class NumberedVersions {
 public:
  NumberedVersions(BrowsableRepository& repository, const std::u16string& name);

  const std::u16string& name() const { return name_; }
  std::size_t size() const { return versions_.size(); }
  const CatalogueMetamodel& operator[](std::size_t number) const { return versions_[number]; }

  /// The number of a version.
  std::optional<std::size_t> find(const pathfinder::VersionId& version) const;

  /// The same, or else that of the version which is equivalent to it, as the end of a hop may be.
  std::optional<std::size_t> findMeant(const pathfinder::VersionId& version) const;

 private:
  BrowsableRepository& repository_;
  std::u16string name_;
  std::vector<CatalogueMetamodel> versions_;
  std::unordered_map<pathfinder::VersionId, std::size_t> numbers_;
};

}  // namespace tarn::evolution::catalogue
