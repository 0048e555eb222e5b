#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "pathfinder/version_id.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// What a metamodel needs: another metamodel, by name, at one of a range of versions.
struct TARN_EVOLUTION_PATHFINDER_EXPORT Dependency {
  Dependency(const std::u16string& name, const VersionRange& range);

  bool operator==(const Dependency& other) const;

  std::u16string name;
  VersionRange range;
};

/// One version of one metamodel as the repository knows it: a descriptor, compared by value.
///
/// Dependencies keep the order given, and their order matters for equality. They are not checked.
/// Of two on one name, linking chooses among the candidates of the first.
struct TARN_EVOLUTION_PATHFINDER_EXPORT Metamodel {
  Metamodel(const std::u16string& name, const VersionId& version,
            const std::vector<Dependency>& dependencies);

  bool operator==(const Metamodel& other) const;

  std::u16string name;
  VersionId version;
  std::vector<Dependency> dependencies;
};

/// Writes "name@version"; the dependencies are not written.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out,
                                                          const Metamodel& metamodel);

}  // namespace tarn::evolution::pathfinder

/// Hashes name and version. Descriptors that differ only in their dependencies hash alike.
template <>
struct TARN_EVOLUTION_PATHFINDER_EXPORT std::hash<tarn::evolution::pathfinder::Metamodel> {
  std::size_t operator()(const tarn::evolution::pathfinder::Metamodel& metamodel) const noexcept;
};
