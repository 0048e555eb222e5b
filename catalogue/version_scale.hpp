#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/precedence.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// How a repository shows the versions of one metamodel to the path finder, whose numbers have
/// three parts and no room between two patches.
///
/// Where the precedence of every version is that of a semantic version, versions are shown as they
/// are, and texts that have a precedence stand for it. Otherwise the metamodel has a scale of its
/// own: every version is shown as a text, a semantic version as its digits, and stands for its rank
/// among the versions of the metamodel, which orders them as their precedence does. In questions,
/// semantic versions are understood all the same.
///
/// A value; any number of threads may read it.
class TARN_EVOLUTION_CATALOGUE_EXPORT VersionScale {
 public:
  /// The scale of versions that are shown as they are.
  VersionScale() = default;

  /// The scale for the precedences of all versions that have one.
  explicit VersionScale(std::vector<Precedence> precedences);

  bool isOwn() const noexcept { return !steps_.empty(); }

  /// What a version with this precedence, which must be one of them, stands for.
  pathfinder::SemVer equivalent(const Precedence& precedence) const;

  /// A version as it is shown, and the one of the catalogue that is shown so.
  pathfinder::VersionId shown(const pathfinder::VersionId& version) const;
  pathfinder::VersionId meant(const pathfinder::VersionId& version) const;

  /// The same with the versions of a metamodel or hop as they are shown.
  pathfinder::Metamodel shown(pathfinder::Metamodel metamodel) const;
  pathfinder::Hop shown(pathfinder::Hop hop) const;
  pathfinder::Hop meant(pathfinder::Hop hop) const;

  /// A range as it is asked for, in the catalogue's versions.
  pathfinder::VersionRange meant(const pathfinder::VersionRange& range) const;

 private:
  std::vector<Precedence>
      steps_;  // ascending, each once; none where versions are shown as they are
};

}  // namespace tarn::evolution::catalogue
