#pragma once

#include <memory>
#include <unordered_map>

#include "catalogue/conditions/conditional_path.hpp"
#include "catalogue/conditions/remaining_versions.hpp"

namespace tarn::evolution::catalogue {

/// The part of a repository's content that conditions leave: paths through it are just those of the
/// content that keep to them. See conditional_repository.cpp.
class ConditionalRepository : public pathfinder::VersionRepository,
                              public pathfinder::RequirementSource {
 public:
  ConditionalRepository(BrowsableRepository& content, const PathConditions& conditions);

  std::optional<pathfinder::SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                                        const std::u16string& versionText) override;
  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;
  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

  /// The conditions, with versions as the content carries them.
  const PathConditions& conditions() const { return conditions_; }

  /// Whether a version was met of which it would have taken too many linked metamodels to tell
  /// whether it is left. From then on, whatever asks for versions fails.
  bool hasMetTooMany() const { return remaining_.hasMetTooMany(); }

  /// Whether nothing is too many any more.
  void takeAll() { remaining_.takeAll(); }

  /// The names that the path has to pass versions of.
  std::vector<std::u16string> passedNames() const;

  /// Baselines with these versions of the content, no version passed but those that they hold.
  std::vector<pathfinder::VersionBaseline> starts(const Selection& content,
                                                  const pathfinder::SearchLimits& limits);

  /// Baselines with these versions, all that is to be passed being passed.
  std::vector<pathfinder::VersionBaseline> ends(const Selection& content,
                                                const pathfinder::SearchLimits& limits);

  /// The path in the content.
  std::vector<pathfinder::BaselineHop> inContent(const std::vector<pathfinder::BaselineHop>& path);

 private:
  using Marks = std::uint64_t;  // which of a name's versions to pass have been passed

  struct Marked {
    pathfinder::VersionId version;
    Marks marks;
  };

  bool isPassed(const std::u16string& name) const { return passed_.contains(name); }
  Marks marksAt(const std::u16string& name, const pathfinder::VersionId& version) const;
  Marks allMarks(const std::u16string& name) const;
  pathfinder::VersionId mark(const std::u16string& name, const pathfinder::VersionId& version,
                             Marks marks) const;
  Marked read(const std::u16string& name, const pathfinder::VersionId& version) const;
  bool isLeft(const pathfinder::Metamodel& metamodel);
  std::vector<pathfinder::VersionBaseline> combineMarked(const Selection& marked,
                                                         const pathfinder::SearchLimits& limits);
  pathfinder::VersionBaseline inContent(const pathfinder::VersionBaseline& baseline);
  std::shared_ptr<pathfinder::LinkedMetamodel> inContent(const pathfinder::LinkedMetamodel& marked);

  BrowsableRepository& content_;
  const PathConditions conditions_;
  std::unordered_map<std::u16string, std::vector<pathfinder::VersionId>> passed_;
  RemainingVersions remaining_;
};

}  // namespace tarn::evolution::catalogue
