#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/conditions/conditional_path.hpp"
#include "catalogue/model/content_view.hpp"

namespace tarn::evolution::catalogue {

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
  /// Where it takes more linked metamodels to tell than bounds allow (see `tryCombine`), it counts
  /// as left.
  bool holds(const pathfinder::Metamodel& metamodel);

  /// Whether the content can link a version, within the same bounds.
  bool canBeLinked(const pathfinder::Metamodel& metamodel);

  /// Whether there was one that it would have taken more to tell of.
  bool hasMetTooMany() const { return hasMetTooMany_; }

  /// From now on, nothing is too many.
  void takeAll();

  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;

 private:
  using Known = std::unordered_map<pathfinder::Metamodel, bool>;

  bool canLink(VersionRepository& repository, const pathfinder::Metamodel& metamodel, Known& known);

  const PathConditions& conditions_;
  Known isLeft_;      // of what is not avoided
  Known isLinkable_;  // in the content
  bool isBounded_ = true;
  bool hasMetTooMany_ = false;
};

}  // namespace tarn::evolution::catalogue
