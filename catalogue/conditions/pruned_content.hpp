#pragma once

#include <optional>
#include <vector>

#include "catalogue/conditions/remaining_versions.hpp"
#include "catalogue/model/content_view.hpp"

namespace tarn::evolution::catalogue {

/// A content without what conditions take away, to be asked between selections: the path finder
/// then decides what it links, so that nobody lists the baselines that a selection stands for. It
/// knows no versions to be passed. The content must outlive it.
class PrunedContent final : public ContentView, public pathfinder::RequirementSource {
 public:
  /// What becomes of versions that cannot be linked, as far as that is easy to tell.
  enum class Unlinkable { Kept, LeftOut };

  /// `conditions`, with versions as the content carries them, must outlive it.
  PrunedContent(BrowsableRepository& content, const PathConditions& conditions,
                Unlinkable unlinkable)
      : ContentView(content),
        conditions_(conditions),
        unlinkable_(unlinkable),
        remaining_(content, conditions) {
    useRequirements(*this);
  }

  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;
  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

 private:
  bool isLeft(const pathfinder::Metamodel& metamodel);

  const PathConditions& conditions_;
  const Unlinkable unlinkable_;
  RemainingVersions remaining_;
};

/// The path from one selection to another under conditions without versions to be passed, which are
/// written as the content carries them; its baselines are equal to those of the content, but not
/// shared with it. Versions that cannot be linked take no part. Throws SearchStopped.
std::optional<std::vector<pathfinder::BaselineHop>> findPrunedPath(
    BrowsableRepository& content, const Selection& from, const Selection& to,
    const PathConditions& conditions, const pathfinder::SearchLimits& limits);

}  // namespace tarn::evolution::catalogue
