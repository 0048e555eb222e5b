#include "catalogue/model/numbered_versions.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

NumberedVersions::NumberedVersions(BrowsableRepository& repository, const std::u16string& name)
    : repository_(repository), name_(name), versions_(repository.listMetamodels(name)) {
  std::stable_sort(versions_.begin(), versions_.end(),
                   [](const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
                     return left.precedence() < right.precedence();
                   });
  for (std::size_t i = 0; i < versions_.size(); ++i) {
    numbers_.emplace(versions_[i].descriptor.version, i);
  }
}

std::optional<std::size_t> NumberedVersions::find(const pathfinder::VersionId& version) const {
  const auto found = numbers_.find(version);
  return found == numbers_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> NumberedVersions::findMeant(const pathfinder::VersionId& version) const {
  if (const auto carrying = find(version)) return carrying;
  const auto meant = repository_.getMetamodel(name_, version);
  return meant ? find(meant->version) : std::nullopt;
}

}  // namespace tarn::evolution::catalogue
