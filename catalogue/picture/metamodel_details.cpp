#include "catalogue/picture/metamodel_details.hpp"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <unordered_map>

#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionId;

namespace {

std::vector<CatalogueMetamodel> listInOrder(BrowsableRepository& repository,
                                            const std::u16string& name) {
  auto versions = repository.listMetamodels(name);
  std::stable_sort(versions.begin(), versions.end(),
                   [](const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
                     return left.precedence() < right.precedence();
                   });
  return versions;
}

/// The hops of a metamodel by version, so that a long history is gone through once.
class HopsByVersion {
 public:
  HopsByVersion(BrowsableRepository& repository, const std::u16string& name,
                const std::vector<CatalogueMetamodel>& versions)
      : repository_(repository) {
    for (const CatalogueMetamodel& each : versions) in_[each.descriptor.version];
    for (const Hop& hop : repository.listHops(name)) {
      in_[meantBy(hop)].push_back(hop);
      out_[hop.from].push_back(hop);
    }
  }

  VersionDetails detail(const CatalogueMetamodel& metamodel) const {
    VersionDetails details{metamodel,
                           lookUp(in_, metamodel.descriptor.version),
                           lookUp(out_, metamodel.descriptor.version),
                           {},
                           std::nullopt};
    for (const auto* hops : {&details.hopsIn, &details.hopsOut}) {
      for (const Hop& hop : *hops) details.hopNotes.add(hop, repository_.findHopNote(hop));
    }
    return details;
  }

 private:
  struct Hash {
    std::size_t operator()(const VersionId& version) const {
      return std::hash<std::string>()(textOf(version));
    }
  };
  using Hops = std::unordered_map<VersionId, std::vector<Hop>, Hash>;

  /// A hop may lead to a text version by its equivalent.
  VersionId meantBy(const Hop& hop) const {
    if (in_.contains(hop.to)) return hop.to;
    const auto metamodel = repository_.getMetamodel(hop.name, hop.to);
    return metamodel ? metamodel->version : hop.to;
  }

  static std::vector<Hop> lookUp(const Hops& hops, const VersionId& version) {
    const auto found = hops.find(version);
    return found == hops.end() ? std::vector<Hop>() : found->second;
  }

  BrowsableRepository& repository_;
  Hops in_;
  Hops out_;
};

}  // namespace

MetamodelDetails describeMetamodel(BrowsableRepository& repository, const std::u16string& name) {
  const auto versions = listInOrder(repository, name);
  if (versions.empty()) {
    throw std::invalid_argument("there is no metamodel \"" +
                                toVisible(fl::i18n::ustring_to_utf8(name)) + "\"");
  }
  const HopsByVersion hops(repository, name, versions);
  MetamodelDetails details{name, {}};
  for (const CatalogueMetamodel& version : versions) {
    details.versions.push_back(hops.detail(version));
  }
  return details;
}

MetamodelDetails describeVersion(BrowsableRepository& repository, const std::u16string& name,
                                 const VersionId& version) {
  MetamodelDetails details = describeMetamodel(repository, name);
  const auto found = repository.getMetamodel(name, version);
  std::erase_if(details.versions, [&](const VersionDetails& detail) {
    return !found || detail.metamodel.descriptor.version != found->version;
  });
  if (details.versions.empty()) {
    throw std::invalid_argument("there is no version " + toVisible(textOf(version)) +
                                " of metamodel \"" + toVisible(fl::i18n::ustring_to_utf8(name)) +
                                "\"");
  }
  for (VersionDetails& detail : details.versions) {
    try {
      detail.variants = repository.getLinkedMetamodels(detail.metamodel.descriptor);
    } catch (const ConflictingDependencies&) {
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
