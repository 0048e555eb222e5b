#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "catalogue/conditions/conditional_path.hpp"
#include "catalogue/model/content_view.hpp"

namespace tarn::evolution::catalogue {

/// Whether a repository can link a metamodel of its content.
bool canLink(pathfinder::VersionRepository& repository, const pathfinder::Metamodel& metamodel);

/// The versions of a repository that are left where some are to be avoided: the others that can be
/// linked with what is left. Both arguments must outlive it.
///
/// A repository of its own, for whether a version is left is asked while others are linked. It
/// knows no requirements: nothing is linked for these, and they may lead from a version back to it.
class RemainingVersions : public ContentView {
 public:
  RemainingVersions(BrowsableRepository& content, const PathConditions& conditions)
      : ContentView(content), conditions_(conditions) {}

  bool isAvoided(const pathfinder::Metamodel& metamodel) const;

  /// Whether a version of the content is left: with none to be avoided, what the content can link.
  bool holds(const pathfinder::Metamodel& metamodel);

  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;

 private:
  const PathConditions& conditions_;
  std::unordered_set<pathfinder::Metamodel> unlinkable_;
};

}  // namespace tarn::evolution::catalogue
