#include "catalogue/model/content_view.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionId;

std::optional<pathfinder::SemVer> ContentView::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  return content_.getEquivalentSemVer(metamodelName, versionText);
}

std::optional<Metamodel> ContentView::getMetamodel(const std::u16string& name,
                                                   const VersionId& version) {
  return content_.getMetamodel(name, version);
}

void ContentView::findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                                 std::vector<Metamodel>& result) {
  content_.findMetamodels(name, range, result);
}

void ContentView::findHops(const std::u16string& name, const VersionId& from,
                           std::vector<Hop>& result) {
  content_.findHops(name, from, result);
}

}  // namespace tarn::evolution::catalogue
