#pragma once

#include <string>
#include <vector>

#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

/// Names, versions and ranges as they stand in sentences for people, safe on a terminal (see
/// `toVisible`).
namespace tarn::evolution::catalogue {

inline std::string visible(const std::u16string& name) {
  return toVisible(fl::i18n::ustring_to_utf8(name));
}

inline std::string visible(const pathfinder::VersionRange& range) {
  return toVisible(rangeText(range));
}

/// What its stream operator writes.
template <class Value>
std::string visible(const Value& value) {
  return toVisible(textOf(value));
}

}  // namespace tarn::evolution::catalogue
