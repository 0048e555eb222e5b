#pragma once

#include <optional>
#include <string>

#include "catalogue/import/full_version.hpp"
#include "catalogue/precedence.hpp"
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

  /// Its place in the catalogue's order, by which ranges find it.
  std::optional<Precedence> precedence() const {
    return equivalent ? Precedence(*equivalent) : Precedence::of(id);
  }
};

}  // namespace tarn::evolution::catalogue
