#pragma once

#include <string>
#include <vector>

#include "pathfinder/version_id.hpp"

namespace tarn::evolution::catalogue {

/// One version of one metamodel, by name.
struct NamedVersion {
  std::u16string name;
  pathfinder::VersionId version;

  bool operator==(const NamedVersion& other) const = default;
};

/// Some versions of one metamodel.
struct NamedVersions {
  std::u16string name;
  std::vector<pathfinder::VersionId> versions;
};

}  // namespace tarn::evolution::catalogue
