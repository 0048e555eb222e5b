#include "pathfinder/selection_combination.hpp"

#include <algorithm>
#include <boost/lexical_cast.hpp>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/baseline_combination.hpp"

namespace tarn::evolution::pathfinder {

namespace {

resource_core::MessageArgument versionArgument(const VersionId& version) {
  if (!version.isSemVer()) return version.getText();
  return boost::lexical_cast<std::string>(version.getSemVer());
}

/// Combines in ascending name order, whatever the order in which the alternatives were gathered.
std::vector<VersionBaseline> combineInNameOrder(std::vector<Alternatives> alternatives) {
  std::sort(
      alternatives.begin(), alternatives.end(),
      [](const Alternatives& left, const Alternatives& right) { return *left.name < *right.name; });
  return combineInOrder(alternatives);
}

}  // namespace

std::vector<VersionBaseline> combineVersions(
    VersionRepository& repository, const std::unordered_map<std::u16string, VersionId>& selection) {
  std::vector<Alternatives> alternatives;
  alternatives.reserve(selection.size());
  for (const auto& [name, version] : selection) {
    const std::optional<Metamodel> metamodel = repository.getMetamodel(name, version);
    if (!metamodel) {
      tarn::reportException(
          tarn_evo::messages::InvalidFamilyVersion(versionArgument(version), name));
    }
    alternatives.push_back({&name, &repository.getLinkedMetamodels(*metamodel)});
  }
  return combineInNameOrder(std::move(alternatives));
}

std::vector<VersionBaseline> combineMetamodels(VersionRepository& repository,
                                               const std::vector<SelectedMetamodel>& selection) {
  std::vector<Alternatives> alternatives;
  alternatives.reserve(selection.size());
  for (const auto& [name, metamodel] : selection) {
    alternatives.push_back({name, &repository.getLinkedMetamodels(*metamodel)});
  }
  return combineInNameOrder(std::move(alternatives));
}

}  // namespace tarn::evolution::pathfinder
