#include "catalogue/conditions/condition_texts.hpp"

#include <stdexcept>

#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

constexpr const char* noVersion = "there is no such version";

void expectMetamodel(BrowsableRepository& repository, const std::u16string& name) {
  if (repository.listMetamodels(name).empty()) {
    throw std::invalid_argument("there is no such metamodel");
  }
}

VersionId knownVersion(BrowsableRepository& repository, const std::u16string& name,
                       const std::string& version) {
  expectMetamodel(repository, name);
  const auto found = repository.getMetamodel(name, parseVersion(version));
  if (!found) throw std::invalid_argument(noVersion);
  return found->version;
}

}  // namespace

void addAvoided(BrowsableRepository& repository, const std::u16string& name,
                const std::string& range, PathConditions& conditions) {
  expectMetamodel(repository, name);
  const std::vector<VersionId> versions = versionsMeant(repository, name, range);
  if (versions.empty()) throw std::invalid_argument(noVersion);
  auto& all = conditions.avoided[name];
  all.insert(all.end(), versions.begin(), versions.end());
}

void addPinned(BrowsableRepository& repository, const std::u16string& name,
               const std::optional<std::string>& version, PathConditions& conditions) {
  if (version) {
    conditions.kept.insert_or_assign(name, knownVersion(repository, name, *version));
  } else {
    expectMetamodel(repository, name);
    conditions.held.insert(name);
  }
}

void addVia(BrowsableRepository& repository, const std::u16string& name, const std::string& version,
            PathConditions& conditions) {
  conditions.via.emplace_back(name, knownVersion(repository, name, version));
}

}  // namespace tarn::evolution::catalogue
