#include "catalogue/model/row_key.hpp"

#include <cstdint>

namespace tarn::evolution::catalogue {

namespace {

/// Where the parts before end is told by their sizes, whatever they hold.
void append(std::u16string& key, std::uint64_t number) {
  for (int shift = 48; shift >= 0; shift -= 16) key += static_cast<char16_t>(number >> shift);
}

void append(std::u16string& key, const std::u16string& text) {
  append(key, text.size());
  key += text;
}

void append(std::u16string& key, const pathfinder::VersionId& version) {
  key += version.isSemVer() ? u'S' : u'T';
  if (!version.isSemVer()) return append(key, version.getText());
  const pathfinder::SemVer& numbers = version.getSemVer();
  append(key, numbers.major);
  append(key, numbers.minor);
  append(key, numbers.patch);
}

}  // namespace

std::u16string keyOf(const std::u16string& name, const pathfinder::VersionId& version) {
  std::u16string key;
  append(key, name);
  append(key, version);
  return key;
}

std::u16string keyOf(const std::u16string& name, const pathfinder::VersionRange& range) {
  if (!range.isSemVerRange()) return keyOf(name, pathfinder::VersionId(range.getText()));
  const auto& [lower, upper] = range.getSemVerRange();
  std::u16string key = keyOf(name, pathfinder::VersionId(lower));
  append(key, pathfinder::VersionId(upper));
  return key;
}

std::u16string keyOf(const pathfinder::Hop& hop) {
  std::u16string key = keyOf(hop.name, hop.from);
  append(key, hop.to);
  return key;
}

}  // namespace tarn::evolution::catalogue
