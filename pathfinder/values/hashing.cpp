#include "pathfinder/values/hashing.hpp"

#include <functional>

namespace tarn::evolution::pathfinder {

std::size_t hashVersion(const VersionId& version) noexcept {
  if (!version.isSemVer()) return std::hash<std::u16string>()(version.getText());
  const SemVer& semantic = version.getSemVer();
  return semantic.major * 1'000'000 + semantic.minor * 1'000 + semantic.patch;
}

std::size_t hashNameAndVersion(const std::u16string& name, const VersionId& version) noexcept {
  return mixHash(mixHash(0, std::hash<std::u16string>()(name)), hashVersion(version));
}

}  // namespace tarn::evolution::pathfinder
