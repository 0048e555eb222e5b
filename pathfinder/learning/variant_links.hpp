#pragma once

#include <memory>
#include <span>
#include <vector>

#include "pathfinder/learning/link_choices.hpp"

namespace tarn::evolution::pathfinder {

/// The choices that linked metamodels offer: each of a version's brings in what it links.
class VariantLinks final : public LinkChoices {
 public:
  /// Null when a version brings a name in by only some of its linked metamodels, not because of
  /// what it is linked to, but because the application links more than dependencies ask for.
  static std::unique_ptr<const VariantLinks> create(const SearchSpace& space);

  std::span<const NameIndex> needsOf(VersionIndex version) const override {
    return needs_[version];
  }

  void visitChoices(VersionSelection selection, const Decide& decide) const override;

 private:
  explicit VariantLinks(const SearchSpace& space) : space_(space), needs_(space.versions.size()) {}

  bool findNeeds(VersionIndex version);
  std::vector<NameIndex> needsOf(const SearchSpace::Variant& variant) const;
  std::vector<Group> groupsOf(VersionIndex version, const VersionSelection& selection) const;

  const SearchSpace& space_;
  std::vector<std::vector<NameIndex>> needs_;  // by version; of names that may be absent, ascending
};

}  // namespace tarn::evolution::pathfinder
