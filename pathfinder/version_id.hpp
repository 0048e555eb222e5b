#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "pathfinder/semver.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// A metamodel's version: a semantic version, or a text that is compared and matched only as a
/// whole.
///
/// The semantic version 1.0.0 and the text "1.0.0" are different identifiers.
class TARN_EVOLUTION_PATHFINDER_EXPORT VersionId {
 public:
  VersionId() = default;  ///< the semantic version 0.0.0
  VersionId(const SemVer& version) : value_(version) {}

  /// A text, given as std::u16string or as what converts to it: u"spring".
  template <class Text>
  requires(std::is_convertible_v<Text, std::u16string> && !std::is_null_pointer_v<Text>)
      VersionId(Text text)
      : value_(std::in_place_type<std::u16string>, std::move(text)) {}

  /// No number is a version: it takes SemVer{1, 0, 0} or u"1".
  template <class Number>
  requires(std::is_arithmetic_v<Number> || std::is_null_pointer_v<Number>) VersionId(Number)
  = delete;

  // Copied by alternative: the copy constructor of g++ 12's variant is lost when memory is short.
  VersionId(const VersionId& other)
      : value_(other.isSemVer() ? Value(other.getSemVer()) : Value(other.getText())) {}
  VersionId(VersionId&&) noexcept = default;
  VersionId& operator=(const VersionId&) = default;
  VersionId& operator=(VersionId&&) noexcept = default;
  ~VersionId() = default;

  bool isSemVer() const noexcept { return value_.index() == 0; }

  /// The semantic version, valid until this object is changed; throws std::bad_variant_access on a
  /// text.
  const SemVer& getSemVer() const { return std::get<SemVer>(value_); }

  /// The text, valid until this object is changed; throws std::bad_variant_access on a semantic
  /// version.
  const std::u16string& getText() const { return std::get<std::u16string>(value_); }

  const std::variant<SemVer, std::u16string>& value() const noexcept { return value_; }

  /// Same alternative and equal value.
  bool operator==(const VersionId& other) const;

 private:
  using Value = std::variant<SemVer, std::u16string>;

  Value value_;
};

/// Writes a semantic version as "major.minor.patch", a text as its UTF-8 bytes without decoration.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out, const VersionId& id);

/// The versions that satisfy a dependency: a half-open range of semantic versions, or one text.
class TARN_EVOLUTION_PATHFINDER_EXPORT VersionRange {
 public:
  VersionRange() = default;  ///< the empty range [0.0.0, 0.0.0)
  VersionRange(const SemVerRange& range) : value_(range) {}

  /// A text, given as std::u16string or as what converts to it: u"spring".
  template <class Text>
  requires(std::is_convertible_v<Text, std::u16string> && !std::is_null_pointer_v<Text>)
      VersionRange(Text text)
      : value_(std::in_place_type<std::u16string>, std::move(text)) {}

  /// No number is a range: it takes SemVerRange or `singleVersion`.
  template <class Number>
  requires(std::is_arithmetic_v<Number> || std::is_null_pointer_v<Number>) VersionRange(Number)
  = delete;

  // As for VersionId.
  VersionRange(const VersionRange& other)
      : value_(other.isSemVerRange() ? Value(other.getSemVerRange()) : Value(other.getText())) {}
  VersionRange(VersionRange&&) noexcept = default;
  VersionRange& operator=(const VersionRange&) = default;
  VersionRange& operator=(VersionRange&&) noexcept = default;
  ~VersionRange() = default;

  /// The narrowest range that includes exactly `id`. The patch of the upper bound wraps: the range
  /// of a version with the largest patch is empty.
  static VersionRange singleVersion(const VersionId& id);

  bool isSemVerRange() const noexcept { return value_.index() == 0; }

  /// The semantic range; throws std::bad_variant_access on a text.
  const SemVerRange& getSemVerRange() const { return std::get<SemVerRange>(value_); }

  /// The text; throws std::bad_variant_access on a semantic range.
  const std::u16string& getText() const { return std::get<std::u16string>(value_); }

  const std::variant<SemVerRange, std::u16string>& value() const noexcept { return value_; }

  /// Whether `id` lies in the range; never across the alternatives, however the text reads.
  bool includes(const VersionId& id) const;

  /// Narrows this range to what it shares with `other`. Different texts leave [0.0.0, 0.0.0).
  ///
  /// The mixed cases differ on purpose: a text range narrowed by a semantic range [L, U) becomes
  /// the empty range [L, L); a semantic range narrowed by a text becomes [0.0.0, 0.0.0) and
  /// std::bad_variant_access is thrown.
  void intersect(const VersionRange& other);

  /// A copy of this range, narrowed by `intersect`; throws what that throws.
  VersionRange intersection(const VersionRange& other) const;

  /// Same alternative and equal value.
  bool operator==(const VersionRange& other) const;

 private:
  using Value = std::variant<SemVerRange, std::u16string>;

  Value value_;
};

/// Writes a semantic range as "[lower, upper)", a text as its UTF-8 bytes without decoration.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out,
                                                          const VersionRange& range);

}  // namespace tarn::evolution::pathfinder

/// Equal identifiers hash alike: a text by its standard hash, a semantic version by
/// major * 1000000 + minor * 1000 + patch.
template <>
struct TARN_EVOLUTION_PATHFINDER_EXPORT std::hash<tarn::evolution::pathfinder::VersionId> {
  std::size_t operator()(const tarn::evolution::pathfinder::VersionId& id) const noexcept;
};
