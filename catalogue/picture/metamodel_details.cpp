#include "catalogue/picture/metamodel_details.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>

#include "catalogue/explanation/printed_text.hpp"
#include "catalogue/picture/display_text.hpp"
#include "messages/messages.hpp"
#include "platform/exception.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::SemVer;
using pathfinder::VersionId;

namespace {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception>;

std::optional<SemVer> orderOf(const CatalogueMetamodel& metamodel) {
  const VersionId& version = metamodel.descriptor.version;
  return version.isSemVer() ? version.getSemVer() : metamodel.equivalent;
}

std::vector<CatalogueMetamodel> listInOrder(BrowsableRepository& repository,
                                            const std::u16string& name) {
  auto versions = repository.listMetamodels(name);
  std::stable_sort(versions.begin(), versions.end(),
                   [](const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
                     return orderOf(left) < orderOf(right);
                   });
  return versions;
}

/// The hops of a metamodel by version, so that a long history is gone through once.
class HopsByVersion {
 public:
  HopsByVersion(BrowsableRepository& repository, const std::u16string& name) {
    for (const Hop& hop : repository.listHops(name)) {
      in_[hop.to].push_back(hop);
      out_[hop.from].push_back(hop);
    }
  }

  VersionDetails detail(const CatalogueMetamodel& metamodel) const {
    return {metamodel, lookUp(in_, metamodel.descriptor.version),
            lookUp(out_, metamodel.descriptor.version), std::nullopt};
  }

 private:
  struct Hash {
    std::size_t operator()(const VersionId& version) const {
      return std::hash<std::string>()(textOf(version));
    }
  };
  using Hops = std::unordered_map<VersionId, std::vector<Hop>, Hash>;

  static std::vector<Hop> lookUp(const Hops& hops, const VersionId& version) {
    const auto found = hops.find(version);
    return found == hops.end() ? std::vector<Hop>() : found->second;
  }

  Hops in_;
  Hops out_;
};

}  // namespace

MetamodelDetails describeMetamodel(BrowsableRepository& repository, const std::u16string& name) {
  const auto versions = listInOrder(repository, name);
  if (versions.empty()) {
    throw std::invalid_argument("no metamodel \"" + toVisible(fl::i18n::ustring_to_utf8(name)) +
                                "\"");
  }
  const HopsByVersion hops(repository, name);
  MetamodelDetails details{name, {}};
  for (const CatalogueMetamodel& version : versions) {
    details.versions.push_back(hops.detail(version));
  }
  return details;
}

MetamodelDetails describeVersion(BrowsableRepository& repository, const std::u16string& name,
                                 const VersionId& version) {
  MetamodelDetails details = describeMetamodel(repository, name);
  const auto other = [&](const VersionDetails& detail) {
    const CatalogueMetamodel& metamodel = detail.metamodel;
    const bool isEquivalent =
        version.isSemVer() && metamodel.equivalent && *metamodel.equivalent == version.getSemVer();
    return metamodel.descriptor.version != version && !isEquivalent;
  };
  std::erase_if(details.versions, other);
  if (details.versions.empty()) {
    throw std::invalid_argument("no version " + toVisible(textOf(version)) + " of metamodel \"" +
                                toVisible(fl::i18n::ustring_to_utf8(name)) + "\"");
  }
  for (VersionDetails& detail : details.versions) {
    try {
      detail.variants = repository.getLinkedMetamodels(detail.metamodel.descriptor);
    } catch (const Conflict&) {
      detail.variants.emplace();
    }
  }
  return details;
}

std::vector<MetamodelSummary> summariseAll(BrowsableRepository& repository) {
  std::vector<MetamodelSummary> all;
  for (const std::u16string& name : repository.listNames()) {
    const auto versions = listInOrder(repository, name);
    all.push_back({name, versions.size(), versions.front().descriptor.version,
                   versions.back().descriptor.version});
  }
  return all;
}

}  // namespace tarn::evolution::catalogue
