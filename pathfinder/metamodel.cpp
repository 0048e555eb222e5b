#include "pathfinder/metamodel.hpp"

#include <ostream>

#include "pathfinder/values/hashing.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::pathfinder {

Dependency::Dependency(const std::u16string& dependencyName, const VersionRange& versionRange)
    : name(dependencyName), range(versionRange) {}

bool Dependency::operator==(const Dependency&) const = default;

Metamodel::Metamodel(const std::u16string& metamodelName, const VersionId& versionId,
                     const std::vector<Dependency>& neededMetamodels)
    : name(metamodelName), version(versionId), dependencies(neededMetamodels) {}

bool Metamodel::operator==(const Metamodel& other) const {
  return version == other.version && name == other.name && dependencies == other.dependencies;
}

std::ostream& operator<<(std::ostream& out, const Metamodel& metamodel) {
  return out << fl::i18n::ustring_to_utf8(metamodel.name) << "@" << metamodel.version;
}

}  // namespace tarn::evolution::pathfinder

std::size_t std::hash<tarn::evolution::pathfinder::Metamodel>::operator()(
    const tarn::evolution::pathfinder::Metamodel& metamodel) const noexcept {
  return tarn::evolution::pathfinder::hashNameAndVersion(metamodel.name, metamodel.version);
}
