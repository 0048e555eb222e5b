#pragma once

#include <optional>
#include <string>

#include "catalogue/import/full_version.hpp"
#include "pathfinder/version_id.hpp"

namespace tarn::evolution::catalogue {

/// A version of one name while a catalogue is assembled: as its source writes it, and as the
/// catalogue will have it.
struct KnownVersion {
  std::string text;
  FullVersion order;
  pathfinder::VersionId id;
  std::optional<pathfinder::SemVer> equivalent = {};
  bool isLeftOut = false;

  /// Its semantic version, or its equivalent, by which ranges find it.
  std::optional<pathfinder::SemVer> semVer() const {
    return id.isSemVer() ? id.getSemVer() : equivalent;
  }
};

}  // namespace tarn::evolution::catalogue
