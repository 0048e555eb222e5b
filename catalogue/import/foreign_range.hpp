#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/import/full_version.hpp"
#include "pathfinder/semver.hpp"

namespace tarn::evolution::catalogue {

/// The versions that a dependency accepts, as its source writes them: alternatives of which each
/// asks for several comparisons to hold, or all versions, or versions by name.
class ForeignRange {
 public:
  /// Bits for what a version may be to the one that is named: less, equal or greater.
  enum class Comparison {
    Less = 1,
    Equal = 2,
    LessOrEqual = 3,
    Greater = 4,
    NotEqual = 5,
    GreaterOrEqual = 6,
  };

  struct Comparator {
    Comparison comparison;
    FullVersion version;
  };

  using Alternative = std::vector<Comparator>;

  enum class Prereleases {
    Ordered,  ///< count as any other version
    Named,    ///< only where a comparison names a pre-release of the same numbers
  };

  /// Every version, also one that is no number.
  static ForeignRange everything();

  /// The versions that are written so.
  static ForeignRange versions(std::vector<std::string> texts);

  ForeignRange(std::vector<Alternative> alternatives, Prereleases prereleases)
      : alternatives_(std::move(alternatives)), prereleases_(prereleases) {}

  bool matches(const std::string& text, const FullVersion& version) const;

  /// The semantic versions that are no pre-releases and lie in the range: ascending, disjoint and
  /// not touching. None for versions by name.
  std::vector<pathfinder::SemVerRange> spans() const;

 private:
  ForeignRange() = default;

  bool matches(const Alternative& alternative, const FullVersion& version) const;

  std::vector<Alternative> alternatives_;
  Prereleases prereleases_ = Prereleases::Ordered;
  bool isEverything_ = false;
  std::vector<std::string> texts_;
};

/// Which public grammar a range is written in.
enum class RangeGrammar {
  Npm,       ///< of the node-semver package: "^1.2.3 || ~2.0 || 3.x || 4.0.0 - 4.2.9"
  Operator,  ///< of operator packages: ">=1.0.0 <2.0.0 !1.5.0 || >3.x"
};

/// Throws std::invalid_argument, with a reason to show, for what is no range.
ForeignRange parseForeignRange(std::string_view text, RangeGrammar grammar);

/// The widest range of semantic versions.
pathfinder::SemVerRange widestRange();

/// What lies in one of the ranges, as `ForeignRange::spans` returns it.
std::vector<pathfinder::SemVerRange> unitedSpans(std::vector<pathfinder::SemVerRange> spans);

/// What lies in a range of each.
std::vector<pathfinder::SemVerRange> commonSpans(const std::vector<pathfinder::SemVerRange>& left,
                                                 const std::vector<pathfinder::SemVerRange>& right);

}  // namespace tarn::evolution::catalogue
