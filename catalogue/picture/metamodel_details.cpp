#include "catalogue/picture/metamodel_details.hpp"

#include <stdexcept>

#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/model/numbered_versions.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/messages.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionId;

MetamodelDetails describeMetamodel(BrowsableRepository& repository, const std::u16string& name) {
  const NumberedVersions versions(repository, name);
  if (versions.size() == 0) throw std::invalid_argument(toVisible(unknownMetamodel(name)));
  MetamodelDetails details{name, {}};
  for (std::size_t i = 0; i < versions.size(); ++i) {
    details.versions.push_back({versions[i], {}, {}, {}, std::nullopt});
  }
  for (const Hop& hop : repository.listHops(name)) {
    const std::u16string note = repository.findHopNote(hop);
    if (const auto to = versions.findMeant(hop.to)) {
      details.versions[*to].hopsIn.push_back(hop);
      details.versions[*to].hopNotes.add(hop, note);
    }
    if (const auto from = versions.find(hop.from)) {
      details.versions[*from].hopsOut.push_back(hop);
      details.versions[*from].hopNotes.add(hop, note);
    }
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
    throw std::invalid_argument(toVisible(unknownVersion(name, version)));
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
    const NumberedVersions versions(repository, name);
    all.push_back({name, versions.size(), versions[0].descriptor.version,
                   versions[versions.size() - 1].descriptor.version});
  }
  return all;
}

}  // namespace tarn::evolution::catalogue
