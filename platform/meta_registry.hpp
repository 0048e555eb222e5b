#pragma once

#include <string>
#include <utility>

#include "platform/meta_types.hpp"
#include "platform/visibility.hpp"

namespace tarn::meta {

/// The process-wide register of meta types. All operations may be called from any thread.
class TARN_PLATFORM_API MetaRegistry {
 public:
  static MetaRegistry& getInstance();

  /// The type registered under `qualifiedName`, loading whatever must be loaded to find it; empty
  /// when there is none.
  Type getType(const std::u16string& qualifiedName) const;

  /// The same look-up without loading anything; empty when the type is not known yet.
  Type getTypeNoLoad(const std::u16string& qualifiedName) const;

  /// Splits a package URI at its last slash. The second part of the framework's own meta package is
  /// "meta"; a URI without a slash is all first part.
  static std::pair<std::u16string, std::u16string> parseUri(const std::u16string& uri);

 private:
  MetaRegistry() = default;
};

/// The framework's standard primitive types, one process-wide handle each. A handle may be empty
/// until its first use; `internal::getPrimitiveTypeFromMetaRegistry` fills it.
struct TARN_PLATFORM_API StandardTypes {
  static PrimitiveType stringMeta;
  static PrimitiveType integerMeta;
  static PrimitiveType integer8Meta;
  static PrimitiveType integer16Meta;
  static PrimitiveType integer64Meta;
  static PrimitiveType realMeta;
  static PrimitiveType booleanMeta;
  static PrimitiveType unlimitedNaturalMeta;
  static PrimitiveType uinteger8Meta;
  static PrimitiveType uinteger16Meta;
  static PrimitiveType uinteger64Meta;
  static PrimitiveType uuidMeta;
  static PrimitiveType dateTimeMeta;
  static PrimitiveType stdstringMeta;
  static PrimitiveType qvArrayMeta;
  static PrimitiveType jsonValueMeta;
  static PrimitiveType stringToStringMapMeta;
};

namespace internal {

/// The primitive type registered under a standard primitive name such as u"String"; empty when the
/// registry has none of that name.
TARN_PLATFORM_API PrimitiveType getPrimitiveTypeFromMetaRegistry(const char16_t* name);

}  // namespace internal
}  // namespace tarn::meta
