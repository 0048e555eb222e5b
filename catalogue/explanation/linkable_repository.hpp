#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "catalogue/model/content_view.hpp"

namespace tarn::evolution::catalogue {

using LinkedMetamodels = std::vector<std::shared_ptr<pathfinder::LinkedMetamodel>>;

/// The content of another repository, which must outlive it, with linked metamodels of its own.
///
/// Can be told to leave out the hops to versions that cannot be linked, over which the path finder
/// would stumble; those stay of which it would take too much to find out.
class LinkableRepository : public ContentView, public pathfinder::RequirementSource {
 public:
  explicit LinkableRepository(BrowsableRepository& content) : ContentView(content) {
    useRequirements(*this);
  }

  /// The linked metamodels of a descriptor; null when it cannot be linked.
  const LinkedMetamodels* tryLink(const pathfinder::Metamodel& metamodel);

  /// Whether a descriptor can be linked; no value when finding out would take more than bounds of
  /// time and memory (see `tryCombine`).
  std::optional<bool> isLinkable(const pathfinder::Metamodel& metamodel);

  /// From now on the hops to versions that cannot be linked are left out.
  void hideUnlinkable() { hidesUnlinkable_ = true; }
  bool hidesUnlinkable() const { return hidesUnlinkable_; }

  /// The least-weight path that answers a question. When the path finder meets a version that
  /// cannot be linked, it is asked again without the hops to all such versions (`hideUnlinkable`).
  /// None where a version that the question selects cannot be linked.
  std::optional<std::vector<pathfinder::BaselineHop>> findPathBesideUnlinkable(
      const Question& question, const pathfinder::SearchLimits& limits);

  /// The versions that hops which were left out would have led to, in the order they were met.
  const std::vector<pathfinder::Metamodel>& hidden() const { return hidden_; }

  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

 private:
  bool leadsToUnlinkable(const pathfinder::Hop& hop);

  std::unordered_set<pathfinder::Metamodel> unlinkable_;
  std::unordered_set<pathfinder::Metamodel> unbounded_;
  std::vector<pathfinder::Metamodel> hidden_;
  bool hidesUnlinkable_ = false;
};

}  // namespace tarn::evolution::catalogue
