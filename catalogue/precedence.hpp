#pragma once

#include <compare>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Where a version stands in the order of Semantic Versioning 2.0.0: by its numbers, a pre-release
/// before its release, identifiers of pre-releases one after the other, build tags of no account.
/// Numbers have any length. Versions of equal precedence compare equal.
class TARN_EVOLUTION_CATALOGUE_EXPORT Precedence {
 public:
  Precedence(const pathfinder::SemVer& release) : numbers_(release) {}

  /// That of a text such as "1.2.0-rc.1+build.5"; empty for a text that cannot be read so.
  static std::optional<Precedence> read(std::u16string_view text);

  /// That of a semantic version, or of a text that can be read so.
  static std::optional<Precedence> of(const pathfinder::VersionId& version);

  /// The semantic version that has this precedence; empty for pre-releases and for numbers beyond
  /// 64 bits.
  std::optional<pathfinder::SemVer> semVer() const;

  bool operator==(const Precedence& other) const { return (*this <=> other) == 0; }
  std::strong_ordering operator<=>(const Precedence& other) const;

 private:
  Precedence(const pathfinder::SemVer& numbers, std::string rest)
      : numbers_(numbers), rest_(std::make_shared<const std::string>(std::move(rest))) {}

  pathfinder::SemVer numbers_;
  std::shared_ptr<const std::string> rest_;  // of all but semantic versions; see precedence.cpp
};

}  // namespace tarn::evolution::catalogue
