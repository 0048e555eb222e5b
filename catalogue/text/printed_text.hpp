#pragma once

#include <cstddef>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "pathfinder/version_id.hpp"
#include "platform/text.hpp"

/// Values, names and numbers as they stand in sentences.
namespace tarn::evolution::catalogue {

/// What `write` writes to the stream that it is given, all of it or std::bad_alloc; numbers without
/// the grouping that the global locale may ask for.
template <class Write>
std::string written(const Write& write) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // rather than to be cut short where memory is
  out.imbue(std::locale::classic());
  write(out);
  return std::move(out).str();
}

/// What a value's stream operator writes.
template <class Value>
std::string textOf(const Value& value) {
  return written([&](std::ostream& out) { out << value; });
}

// The same without a stream, which takes ten times as long: paths consist of versions.
inline std::string textOf(const pathfinder::SemVer& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.patch);
}
inline std::string textOf(const pathfinder::VersionId& version) {
  return version.isSemVer() ? textOf(version.getSemVer())
                            : fl::i18n::ustring_to_utf8(version.getText());
}

/// A name between quotation marks.
inline std::string quotedName(std::u16string_view name) {
  return "\"" + fl::i18n::ustring_to_utf8(std::u16string(name)) + "\"";
}

/// "1 step", "2 steps".
inline std::string countedText(std::size_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace tarn::evolution::catalogue
