#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "catalogue/import/foreign_catalogue.hpp"
#include "catalogue/import/import.hpp"

namespace tarn::evolution::catalogue {

/// The versions of a package to offer hops to, for one version: of each line of versions from its
/// own on the newest one that is newer than it.
///
/// What is a line is `offered`'s to say; while the major version is 0, the minor version counts as
/// the major one. Versions that are no releases are not offered.
class HopOffer {
 public:
  /// Of `isInferior` versions, those that are not are preferred, however old.
  HopOffer(const std::vector<ForeignVersion>& versions, OfferedHops offered,
           const std::function<bool(std::size_t)>& isInferior = {});

  /// Ascending. `isAllowed` says which versions count at all.
  std::vector<std::size_t> from(std::size_t version,
                                const std::function<bool(std::size_t)>& isAllowed = {}) const;

 private:
  bool isSameLine(std::size_t left, std::size_t right) const;

  const std::vector<ForeignVersion>& versions_;
  OfferedHops offered_;
  std::vector<bool> isInferior_;
  std::vector<std::size_t> releases_;  // ascending
};

}  // namespace tarn::evolution::catalogue
