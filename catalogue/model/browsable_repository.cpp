#include "catalogue/browsable_repository.hpp"

namespace tarn::evolution::catalogue {

void BrowsableRepository::findRequirements(const pathfinder::Metamodel& /*metamodel*/,
                                           std::vector<pathfinder::PeerRequirement>& /*result*/) {}

std::u16string BrowsableRepository::findVersionNote(const std::u16string& name,
                                                    const pathfinder::VersionId& version) {
  for (CatalogueMetamodel& metamodel : listMetamodels(name)) {
    if (metamodel.descriptor.version == version) return std::move(metamodel.note);
  }
  return {};
}

std::u16string BrowsableRepository::findHopNote(const pathfinder::Hop& /*hop*/) {
  return {};
}

}  // namespace tarn::evolution::catalogue
